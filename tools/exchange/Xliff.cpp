#include "tools/exchange/Xliff.h"

#include <algorithm>
#include <map>
#include <vector>

#include "tools/exchange/ShownText.h"

namespace tool {

namespace {

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Attribute(const char* name, std::string_view value) {
    return std::string(" ") + name + "=\"" + Escaped(value) + '"';
}

// "pt_BR" -> "pt-BR". When empty, the code of an unknown language.
std::string LanguageTag(std::string language) {
    std::ranges::replace(language, '_', '-');
    return language.empty() ? "und" : language;
}

// The inline codes of a unit. The first use of a text in the target matches its first use in the
// source.
class Codes {
public:
    explicit Codes(const Unit& unit)
        : source(Number(SplitCodes(unit.source))), target(Number(SplitCodes(unit.target))) {}

    struct Numbered {
        std::size_t id;  // from 1; 0 for a text
        std::string text;
    };
    const std::vector<Numbered>& Source() const { return source; }
    const std::vector<Numbered>& Target() const { return target; }
    // All of them by their ids.
    const std::map<std::size_t, std::string>& Texts() const { return texts; }

private:
    std::vector<Numbered> Number(const std::vector<Piece>& pieces) {
        std::vector<Numbered> numbered;
        std::map<std::size_t, std::string> free = texts;
        for (const Piece& piece : pieces) {
            if (!piece.isCode) {
                numbered.push_back({0, piece.text});
                continue;
            }
            const auto same = std::ranges::find_if(
                free, [&piece](const auto& code) { return code.second == piece.text; });
            std::size_t id = texts.size() + 1;
            if (same != free.end()) {
                id = same->first;
                free.erase(same);
            } else {
                texts.emplace(id, piece.text);
            }
            numbered.push_back({id, piece.text});
        }
        return numbered;
    }

    std::map<std::size_t, std::string> texts;  // the first member: the others fill it
    std::vector<Numbered> source;
    std::vector<Numbered> target;
};

std::string Inline12(const std::vector<Codes::Numbered>& pieces) {
    std::string text;
    for (const auto& [id, piece] : pieces) {
        if (id == 0) {
            text += Escaped(piece);
            continue;
        }
        const char* const type = piece == "\n" ? "lb" : "x-wordlex";
        text += "<x" + Attribute("id", std::to_string(id)) + Attribute("ctype", type) +
                Attribute("equiv-text", NameOfCode(piece)) + "/>";
    }
    return text;
}

std::string Unit12(const Unit& unit, std::size_t number) {
    const Codes codes(unit);
    std::string text = "      <trans-unit" + Attribute("id", std::to_string(number)) +
                       Attribute("resname", unit.key) +
                       (unit.state == State::kTranslated ? Attribute("approved", "yes") : "") +
                       " xml:space=\"preserve\">\n        <source>" + Inline12(codes.Source()) +
                       "</source>\n";
    if (unit.state != State::kUntranslated) {
        const char* const state =
            unit.state == State::kTranslated ? "translated" : "needs-review-translation";
        text += "        <target" + Attribute("state", state) + '>' + Inline12(codes.Target()) +
                "</target>\n";
    }
    for (const std::string& note : unit.notes)
        text += "        <note from=\"developer\">" + Escaped(note) + "</note>\n";
    for (const std::string& comment : unit.comments)
        text += "        <note from=\"translator\">" + Escaped(comment) + "</note>\n";
    return text + "      </trans-unit>\n";
}

std::string Inline21(const std::vector<Codes::Numbered>& pieces) {
    std::string text;
    for (const auto& [id, piece] : pieces) {
        if (id == 0) {
            text += Escaped(piece);
            continue;
        }
        const std::string number = std::to_string(id);
        // A translation may break its lines elsewhere.
        const char* const canDelete = piece == "\n" ? "yes" : "no";
        text += "<ph" + Attribute("id", number) + Attribute("dataRef", "d" + number) +
                Attribute("disp", NameOfCode(piece)) + Attribute("canDelete", canDelete) + "/>";
    }
    return text;
}

std::string Unit21(const Unit& unit, std::size_t number) {
    const Codes codes(unit);
    std::string text = "    <unit" + Attribute("id", "u" + std::to_string(number)) +
                       Attribute("name", unit.key) + " xml:space=\"preserve\">\n";
    if (!unit.notes.empty() || !unit.comments.empty()) {
        text += "      <notes>\n";
        for (const std::string& note : unit.notes)
            text += "        <note category=\"developer\">" + Escaped(note) + "</note>\n";
        for (const std::string& comment : unit.comments)
            text += "        <note category=\"translator\">" + Escaped(comment) + "</note>\n";
        text += "      </notes>\n";
    }
    if (!codes.Texts().empty()) {
        text += "      <originalData>\n";
        for (const auto& [id, code] : codes.Texts()) {
            text += "        <data" + Attribute("id", "d" + std::to_string(id)) + '>' +
                    Escaped(NameOfCode(code)) + "</data>\n";
        }
        text += "      </originalData>\n";
    }
    const char* const state = unit.state == State::kTranslated ? "translated" : "initial";
    text += "      <segment" + Attribute("state", state) +
            (unit.state == State::kNeedsReview ? Attribute("subState", "wordlex:stale") : "") +
            ">\n        <source>" + Inline21(codes.Source()) + "</source>\n";
    if (unit.state != State::kUntranslated) {
        text += "        <target>" + Inline21(codes.Target()) + "</target>\n";
    }
    return text + "      </segment>\n    </unit>\n";
}

}  // namespace

std::string WriteXliff(const Exchange& exchange, XliffVersion version) {
    const std::string source = LanguageTag(exchange.sourceLanguage);
    const std::string target = LanguageTag(exchange.targetLanguage);
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (version == XliffVersion::k12) {
        text += "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">\n  <file" +
                Attribute("original", exchange.original) + Attribute("source-language", source) +
                Attribute("target-language", target) + " datatype=\"plaintext\">\n    <body>\n";
    } else {
        text += "<xliff version=\"2.1\" xmlns=\"urn:oasis:names:tc:xliff:document:2.0\"" +
                Attribute("srcLang", source) + Attribute("trgLang", target) +
                ">\n  <file id=\"f1\"" + Attribute("original", exchange.original) + ">\n";
    }
    std::size_t number = 0;
    for (const Unit& unit : exchange.units) {
        if (unit.obsolete) continue;  // XLIFF cannot express them
        ++number;
        text += version == XliffVersion::k12 ? Unit12(unit, number) : Unit21(unit, number);
    }
    return text + (version == XliffVersion::k12 ? "    </body>\n" : "") + "  </file>\n</xliff>\n";
}

}  // namespace tool
