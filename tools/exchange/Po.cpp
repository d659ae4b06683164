#include "tools/exchange/Po.h"

#include <libxml/xmlstring.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "tools/base/Files.h"

namespace tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\n':
                quoted += "\\n";
                break;
            case '\t':
                quoted += "\\t";
                break;
            default:
                quoted += c;
        }
    }
    return quoted + '"';
}

// A text of several lines gets one line of the file for each.
std::string Field(const std::string& before, std::string_view text) {
    const std::size_t first = text.find('\n');
    if (first == text.npos || first + 1 == text.size()) return before + ' ' + Quoted(text) + '\n';
    const std::string indent = before.starts_with("#~") ? "#~ " : "";
    std::string field = before + " \"\"\n";
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        field += indent + Quoted(text.substr(0, end)) + '\n';
        text.remove_prefix(end);
    }
    return field;
}

std::string Header(const Exchange& exchange) {
    return "msgid \"\"\n" +
           Field("msgstr", "Project-Id-Version: " + exchange.original +
                               "\nPO-Revision-Date: \nLast-Translator: \nLanguage-Team: \n"
                               "Language: " +
                               exchange.targetLanguage +
                               "\nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
                               "Content-Transfer-Encoding: 8bit\nX-Accelerator-Marker: &\n");
}

// Reads a file line by line.
class Reader {
public:
    explicit Reader(const std::string& fileName) : name(fileName) {}

    Exchange Read(std::string_view text) && {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            ++number;
            ReadLine(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        Finish();
        return std::move(exchange);
    }

private:
    // The value after a keyword, with the line where it begins.
    struct Value {
        std::string text;
        std::uint64_t line;
    };
    struct Entry {
        std::optional<Value> context;
        std::optional<Value> id;
        std::optional<Value> translation;
        bool fuzzy = false;
        bool obsolete = false;
    };

    [[noreturn]] void Fail(std::uint64_t line, const std::string& why) const {
        throw Failure(name + ':' + std::to_string(line) + ": " + why);
    }

    static std::string_view Trimmed(std::string_view text) {
        const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
        text.remove_prefix(begin);
        return text.substr(0, text.find_last_not_of(kBlanks) + 1);
    }

    void ReadLine(std::string_view line) {
        line = Trimmed(line);
        if (line.starts_with("#~")) {
            line = Trimmed(line.substr(2));
            if (line.starts_with('|')) return;
            ReadKeyword(line, true);
        } else if (line.starts_with('#')) {
            if (entry.translation) Finish();
            if (line.starts_with("#,") && line.find("fuzzy") != line.npos) entry.fuzzy = true;
        } else {
            ReadKeyword(line, false);
        }
    }

    void ReadKeyword(std::string_view line, bool isObsolete) {
        if (line.empty()) return;
        const std::size_t length = std::min(line.find_first_of(" \t\""), line.size());
        const std::string_view keyword = line.substr(0, length);
        if (keyword.empty()) {
            if (open == nullptr) Fail(number, "a text without a keyword before it");
        } else if (keyword == "msgctxt") {
            Begin(entry.context, entry.context || entry.id);
        } else if (keyword == "msgid") {
            Begin(entry.id, entry.id.has_value());
        } else if (keyword == "msgstr") {
            if (!entry.id || entry.translation) Fail(number, "msgstr without msgid before it");
            Begin(entry.translation, false);
        } else if (keyword == "msgid_plural" || keyword.starts_with("msgstr[")) {
            Fail(number, "plural forms of gettext; write them as a message pattern in msgstr");
        } else {
            Fail(number,
                 "\"" + std::string(keyword) +
                     "\" is not a keyword; a line begins with msgctxt, msgid, msgstr or \"#\"");
        }
        if (open == nullptr) return;
        entry.obsolete = isObsolete;
        AppendString(Trimmed(line.substr(length)));
    }

    // `value` is a member of `entry`.
    void Begin(std::optional<Value>& value, bool isNextEntry) {
        if (entry.translation) isNextEntry = true;
        if (isNextEntry) Finish();
        value.emplace(Value{{}, number});
        open = &*value;
    }

    void AppendString(std::string_view quoted) {
        if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
            Fail(number, "a text must be in quotation marks");
        }
        quoted = quoted.substr(1, quoted.size() - 2);
        for (std::size_t i = 0; i < quoted.size(); ++i) {
            if (quoted[i] == '"') Fail(number, "a quotation mark inside a text; write \\\"");
            if (quoted[i] != '\\') {
                open->text += quoted[i];
                continue;
            }
            static constexpr std::string_view kEscapes = "nrtbafv\\\"";
            static constexpr std::string_view kCharacters = "\n\r\t\b\a\f\v\\\"";
            const std::size_t row =
                ++i < quoted.size() ? kEscapes.find(quoted[i]) : std::string_view::npos;
            if (row == std::string_view::npos) {
                Fail(number, "\"\\\" does not begin an escape here; write \\\\");
            }
            open->text += kCharacters[row];
        }
    }

    // Ends an entry, and begins the next.
    void Finish() {
        open = nullptr;
        const Entry done = std::exchange(entry, {});
        if (!done.context && !done.id) return;
        const std::uint64_t line = done.context ? done.context->line : done.id->line;
        if (!done.id || !done.translation) Fail(line, "an entry without msgid and msgstr");
        if (!done.context && done.id->text.empty()) {
            CheckCharset(*done.translation);
            return;
        }
        if (done.obsolete) return;
        if (!done.context) Fail(line, "no msgctxt, which is the key; remove the entry");
        Unit unit;
        unit.key = done.context->text;
        unit.source = done.id->text;
        unit.target = done.translation->text;
        unit.line = done.translation->line;
        if (!unit.target.empty())
            unit.state = done.fuzzy ? State::kNeedsReview : State::kTranslated;
        exchange.units.push_back(std::move(unit));
    }

    void CheckCharset(const Value& header) const {
        constexpr std::string_view kField = "charset=";
        const std::size_t at = header.text.find(kField);
        if (at == std::string::npos) return;
        const std::size_t begin = at + kField.size();
        std::string charset =
            header.text.substr(begin, header.text.find_first_of(" \t\n;", begin) - begin);
        std::ranges::transform(charset, charset.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
        if (charset == "UTF-8" || charset == "US-ASCII" || charset == "ASCII") return;
        Fail(header.line, "the encoding " + charset + "; convert the file: msgconv -t UTF-8");
    }

    const std::string& name;
    std::uint64_t number = 0;
    Entry entry;
    Value* open = nullptr;  // receives the next string
    Exchange exchange;
};

}  // namespace

std::string WritePo(const Exchange& exchange) {
    std::string text = Header(exchange);
    for (const Unit& unit : exchange.units) {
        const std::string mark = unit.obsolete ? "#~ " : "";
        text += '\n';
        for (const std::string& comment : unit.comments)
            text += "# " + comment + '\n';
        for (const std::string& note : unit.notes)
            text += "#. " + note + '\n';
        if (unit.state == State::kNeedsReview) text += "#, fuzzy\n";
        text += Field(mark + "msgctxt", unit.key) + Field(mark + "msgid", unit.source) +
                Field(mark + "msgstr", unit.target);
    }
    return text;
}

Exchange ReadPo(const std::string& name, const std::string& bytes) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    const bool hasZero = bytes.find('\0') != std::string::npos;
    if (hasZero || xmlCheckUTF8(reinterpret_cast<const xmlChar*>(bytes.c_str())) == 0) {
        throw Failure(name + ": not UTF-8; convert the file: msgconv -t UTF-8");
    }
    std::string_view text = bytes;
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
    return Reader(name).Read(text);
}

}  // namespace tool
