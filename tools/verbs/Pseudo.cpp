// A dictionary in an invented language. It shows which texts of a program are not localized, do not
// fit, or break from right to left.
#include <algorithm>
#include <array>
#include <utility>

#include "tools/base/Annotations.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/base/TextDocument.h"
#include "tools/exchange/ShownText.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

using Line = TextDocument::Line;
using Written = std::vector<unsigned short>;

constexpr std::uint32_t kUsualExpansion = 30;  // percent, as --help says
constexpr std::uint32_t kMostExpansion = 1000;

constexpr std::size_t kLetters = 26;
// Avoids the letters that Windows-1252 has from 0x80 to 0x9F: texts would look like UTF-8 converted
// twice.
constexpr char16_t kSmall[] = u"åƀçðéḟĝĥîĵķļɱñöþǫŕŝţûṽŵẋýż";
constexpr char16_t kCapital[] = u"ÅƁÇÐÉƑĜĤÎĴĶĻṀÑÖÞǪŔŜŢÛṼŴẊÝŻ";
static_assert(std::size(kSmall) == kLetters + 1 && std::size(kCapital) == kLetters + 1);

unsigned short Accented(unsigned short unit) {
    if (unit >= u'a' && unit <= u'z') return kSmall[unit - u'a'];
    if (unit >= u'A' && unit <= u'Z') return kCapital[unit - u'A'];
    return unit;
}

bool IsLetter(unsigned short unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit > 0xBF;
}

bool BeginsWith(Units text, std::string_view word) {
    return text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin());
}

std::size_t FindWord(Units text, std::string_view word) {
    const auto found = std::search(text.begin(), text.end(), word.begin(), word.end());
    return static_cast<std::size_t>(found - text.begin());
}

// The number of units at the start of the written text that stay as they are, or 0: escapes,
// markers, entities, parameter tags, accelerators.
std::size_t KeptLength(Units text) {
    const bool hasNext = text.size() > 1;
    switch (text[0]) {
        case u'\\':
            return hasNext && text[1] != u'{' && text[1] != u'}' ? 2 : 1;
        case u'^':
            return hasNext ? 2 : 1;
        case u'&':
            return hasNext && (IsLetter(text[1]) || text[1] == u'&') ? 2 : 1;
        case u'#':
            return EntityLength(text);
        case u'<': {
            const auto afterBlanks = std::find_if(text.begin() + 1, text.end(),
                                                  [](unsigned short unit) { return unit != ' '; });
            const Units rest(afterBlanks, text.end());
            const std::size_t end = FindWord(text, "/>");
            return BeginsWith(rest, "param") && end != text.size() ? end + 2 : 0;
        }
        default:
            return 0;
    }
}

bool IsLineBreak(Units kept) {
    return kept.size() == 2 && kept[0] != u'&' && (kept[1] == u'n' || kept[1] == u'r');
}

bool BeginsSection(Units text) {
    constexpr std::string_view kSections[] = {"#{macos}", "#{mswindows}", "#{ios}", "#{android}"};
    return std::ranges::any_of(kSections,
                               [text](std::string_view word) { return BeginsWith(text, word); });
}

// Writes the pseudo text of one written value.
class Writer {
public:
    Writer(std::uint32_t percentLonger, bool rightToLeft)
        : expansion(percentLonger), mirrored(rightToLeft) {}

    Written Write(Units value, bool isMessage) {
        output.clear();
        while (!value.empty()) {
            const std::size_t end = SectionEnd(value);
            WriteSection(value.first(end), isMessage);
            value = value.subspan(end);
            if (value.empty()) break;
            const std::size_t mark = EntityLength(value);
            Keep(value.first(mark));
            value = value.subspan(mark);
        }
        return std::move(output);
    }

private:
    static std::size_t SectionEnd(Units value) {
        std::size_t at = 0;
        while (at < value.size() && !BeginsSection(value.subspan(at)))
            at += std::max<std::size_t>(KeptLength(value.subspan(at)), 1);
        return std::min(at, value.size());
    }

    // Where a key combination or a comment begins, with the blanks before it.
    static std::size_t TextEnd(Units section) {
        std::size_t at = 0;
        while (at < section.size() && !BeginsWith(section.subspan(at), "\\b") &&
               !BeginsWith(section.subspan(at), "#{comment}")) {
            at += std::max<std::size_t>(KeptLength(section.subspan(at)), 1);
        }
        at = std::min(at, section.size());
        while (at < section.size() && at > 0 && section[at - 1] == u' ')
            --at;
        return at;
    }

    void WriteSection(Units section, bool isMessage) {
        const std::size_t end = TextEnd(section);
        text = section.first(end);
        position = 0;
        const bool hasBranches = isMessage && HasBranches();
        if (!HasLetters()) {
            Keep(text);
        } else if (hasBranches) {
            WriteMessage(false);
        } else {
            Open();
            if (isMessage) {
                WriteMessage(true);
            } else {
                WriteText([](unsigned short) { return false; });
            }
            Close();
        }
        Keep(section.subspan(end));
    }

    bool HasLetters() const {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t kept = KeptLength(text.subspan(at));
            if (kept == 0 && IsLetter(text[at])) return true;
            if (kept == 2 && text[at] == u'&' && IsLetter(text[at + 1])) return true;
            at += std::max<std::size_t>(kept, 1);
        }
        return false;
    }

    // Whether an argument of the message has messages of its own.
    bool HasBranches() const {
        int depth = 0;
        for (std::size_t at = 0; at < text.size() && depth < 2;) {
            const Units rest = text.subspan(at);
            const std::size_t kept = rest[0] == u'\'' ? QuotedLength(rest) : KeptLength(rest);
            if (kept == 0) depth += rest[0] == u'{' ? 1 : rest[0] == u'}' ? -1 : 0;
            at += std::max<std::size_t>(kept, 1);
        }
        return depth == 2;
    }

    // Writes text up to a unit that ends it.
    template <class Ends>
    void WriteText(Ends ends) {
        while (position < text.size()) {
            const Units rest = text.subspan(position);
            const std::size_t kept = KeptLength(rest);
            if (kept == 0 && ends(rest[0])) break;
            if (kept == 0) {
                BeginRun();
                output.push_back(Accented(rest[0]));
                ++characters;
            } else if (rest[0] == u'&') {
                BeginRun();
                Keep(rest.first(kept));
                ++characters;
            } else {
                EndRun();
                const bool isBreak = IsLineBreak(rest.first(kept));
                if (isBreak) Mark(kPopIsolate);
                Keep(rest.first(kept));
                if (isBreak) Mark(kIsolate);
            }
            position += std::max<std::size_t>(kept, 1);
        }
        EndRun();
    }

    // A message up to the "}" that ends its branch.
    void WriteMessage(bool isBracketed) {
        for (;;) {
            WriteText([](unsigned short unit) {
                return unit == u'{' || unit == u'}' || unit == u'\'' || unit == u'#';
            });
            if (position == text.size() || text[position] == u'}') return;
            if (text[position] == u'{') {
                WriteArgument(isBracketed);
            } else if (text[position] == u'\'') {
                const std::size_t length = QuotedLength(text.subspan(position));
                Keep(text.subspan(position, length));
                position += length;
            } else {
                Keep(text.subspan(position++, 1));
            }
        }
    }

    void WriteArgument(bool isBracketed) {
        Keep(text.subspan(position++, 1));
        while (position < text.size()) {
            const unsigned short unit = text[position];
            Keep(text.subspan(position++, 1));
            if (unit == u'}') return;
            if (unit != u'{') continue;
            if (!isBracketed) Open();
            WriteMessage(true);
            if (!isBracketed) Close();
            if (position < text.size()) Keep(text.subspan(position++, 1));
        }
    }

    // The units of an apostrophe and of the pattern text that it protects up to the next one.
    static std::size_t QuotedLength(Units rest) {
        const unsigned short next = rest.size() > 1 ? rest[1] : 0;
        if (next == u'\'') return 2;
        if (next != u'{' && next != u'}' && next != u'#') return 1;
        const auto end = std::find(rest.begin() + 1, rest.end(), u'\'');
        return static_cast<std::size_t>(end - rest.begin()) + (end == rest.end() ? 0 : 1);
    }

    void Open() {
        characters = 0;
        Mark(kIsolate);
        output.push_back(u'[');
    }

    // Makes the text longer; blanks let it wrap as words do.
    void Close() {
        constexpr std::size_t kWord = 8;
        constexpr std::size_t kPercent = 100;
        const std::size_t more = (characters * expansion + kPercent - 1) / kPercent;
        for (std::size_t i = 0; i < more; ++i)
            output.push_back(i % kWord == 0 && i + 1 != more ? u' ' : u'~');
        output.push_back(u']');
        Mark(kPopIsolate);
    }

    static constexpr unsigned short kIsolate = 0x2067;  // right-to-left
    static constexpr unsigned short kPopIsolate = 0x2069;
    static constexpr unsigned short kOverride = 0x202E;  // right-to-left
    static constexpr unsigned short kPopOverride = 0x202C;

    // Written as a number, because editors hide the character.
    void Mark(unsigned short character) {
        if (!mirrored) return;
        const std::string number = "#{" + CodePoint(character) + "}";
        output.insert(output.end(), number.begin(), number.end());
    }
    void BeginRun() {
        if (!std::exchange(inRun, true)) Mark(kOverride);
    }
    void EndRun() {
        if (std::exchange(inRun, false)) Mark(kPopOverride);
    }
    void Keep(Units units) { output.insert(output.end(), units.begin(), units.end()); }

    std::size_t expansion;  // percent
    bool mirrored;
    Written output;
    Units text;  // of the section, without a key combination
    std::size_t position = 0;
    std::size_t characters = 0;  // since the bracket
    bool inRun = false;          // in text that the override mirrors
};

std::string PseudoText(TextDocument document, const std::string& name, Writer writer) {
    const Progress progress("writing", name);
    for (const Line& line : document.Lines()) {
        const bool isMessage = ParseAnnotations(document.Comment(line, line.before),
                                                document.Comment(line, line.after))
                                   .message;
        document.SetValue(line, writer.Write(document.Value(line), isMessage));
    }
    return document.Bytes();
}

}  // namespace

int Pseudo(const Arguments& arguments) {
    const std::string& name = arguments.operands.front();
    const std::uint32_t expansion = arguments.Number("expand").value_or(kUsualExpansion);
    if (expansion > kMostExpansion) {
        throw UsageFailure("--expand: at most " + std::to_string(kMostExpansion) + " percent");
    }
    WriteOutput(arguments.Get("output"),
                PseudoText(ReadTextDocument(name), name, Writer(expansion, arguments.Has("rtl"))));
    return kSuccess;
}

}  // namespace tool
