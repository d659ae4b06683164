#include "tools/base/Annotations.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <cstdio>

#include "wordlex/functionality/Escapes.h"

namespace tool {

namespace {

using lexon_private::ControlWord;
using lexon_private::Escapes;

constexpr std::string_view kName = "wordlex:";
constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kDigestLength = 6;

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }
bool IsRulePart(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-'; }

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return text.substr(text.size());
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

enum class Kind { kUntranslated, kStale, kFrom, kMessage, kIgnore, kForPeople };

// The text after "wordlex:" up to the next one, or between two ";".
struct Part {
    Kind kind;
    std::string_view text;
};

Kind KindOf(std::string_view text) {
    constexpr std::string_view from = "from ";
    if (text == "untranslated") return Kind::kUntranslated;
    if (text == "stale") return Kind::kStale;
    if (text == "message") return Kind::kMessage;
    if (text.starts_with("ignore ")) return Kind::kIgnore;
    const bool isDigest = text.starts_with(from) && text.size() == from.size() + kDigestLength &&
                          std::ranges::all_of(text.substr(from.size()), IsHexDigit);
    return isDigest ? Kind::kFrom : Kind::kForPeople;
}

// The text before the first "wordlex:", and the parts after it.
struct Comment {
    std::string_view head;
    std::vector<Part> parts;
};

Comment Split(std::string_view comment) {
    Comment split{comment.substr(0, comment.find(kName)), {}};
    std::string_view rest = comment.substr(split.head.size());
    while (!rest.empty()) {
        if (rest.starts_with(kName)) rest.remove_prefix(kName.size());
        const std::string_view part = rest.substr(0, std::min(rest.find(';'), rest.find(kName)));
        const std::string_view text = Trimmed(part);
        if (!text.empty()) split.parts.push_back({KindOf(text), text});
        rest.remove_prefix(part.size());
        if (rest.starts_with(';')) rest.remove_prefix(1);
    }
    return split;
}

void AddRules(std::string_view list, std::size_t offset, std::vector<Annotations::Rule>& rules) {
    for (std::size_t at = list.find(' ') + 1; at < list.size();) {
        if (!IsRulePart(list[at])) {
            if (list[at] != ',' && list[at] != ' ') return;
            ++at;
            continue;
        }
        const auto rest = list.substr(at);
        const auto end = std::ranges::find_if_not(rest, IsRulePart);
        const auto length = static_cast<std::size_t>(end - rest.begin());
        rules.push_back({std::string(rest.substr(0, length)), offset + at});
        at += length;
    }
}

void Add(std::string_view comment, Annotations& found) {
    for (const Part& part : Split(comment).parts) {
        switch (part.kind) {
            case Kind::kUntranslated:
                found.untranslated = true;
                break;
            case Kind::kStale:
                found.stale = true;
                break;
            case Kind::kMessage:
                found.message = true;
                break;
            case Kind::kFrom:
                found.from = part.text.substr(part.text.size() - kDigestLength);
                break;
            case Kind::kIgnore:
                AddRules(part.text, static_cast<std::size_t>(part.text.data() - comment.data()),
                         found.ignored);
                break;
            case Kind::kForPeople:
                break;
        }
    }
}

// Whether sections for platforms keep part of the written value out of the converted one.
class SectionObserver : public lexon_private::EscapeObserver {
public:
    void OnUnitEscape(std::size_t, unsigned short, unsigned short, unsigned short) override {}
    void OnNoEntity(std::size_t) override {}
    void OnDropped(std::size_t, std::size_t, ControlWord by) override {
        hasSections |= by != ControlWord::kComment;
    }
    bool hasSections = false;
};

// The form in which a written value is compared: what it shows, or all of it where platforms
// differ. Points into the value or into `room`.
Units Compared(Units written, std::vector<unsigned short>& room) {
    const Units shown = Escapes::Convert(written, room);
    if (shown.data() == written.data()) return written;  // has no escapes
    SectionObserver observer;
    Escapes::Convert(written, observer);
    return observer.hasSections ? written : shown;
}

}  // namespace

Annotations ParseAnnotations(std::string_view comment) { return ParseAnnotations({}, comment); }

Annotations ParseAnnotations(std::string_view before, std::string_view after) {
    Annotations found;
    Add(before, found);
    Add(after, found);
    return found;
}

std::string ForPeople(std::string_view comment) {
    const Comment split = Split(comment);
    std::string text(Trimmed(split.head));
    for (const Part& part : split.parts) {
        if (part.kind == Kind::kForPeople) (text += text.empty() ? "" : "; ") += part.text;
    }
    return text;
}

std::string WithMarks(std::string_view comment, const Annotations& marks) {
    const Annotations there = ParseAnnotations(comment);
    if (there.untranslated == marks.untranslated && there.stale == marks.stale &&
        there.from == marks.from) {
        return std::string(comment);
    }
    const Comment split = Split(comment);
    std::string list;
    const auto add = [&list](std::string_view part) { (list += list.empty() ? "" : "; ") += part; };
    const auto addAll = [&](auto... kinds) {
        for (const Part& part : split.parts)
            if (((part.kind == kinds) || ...)) add(part.text);
    };
    addAll(Kind::kIgnore, Kind::kMessage);
    if (marks.untranslated) add("untranslated");
    if (marks.stale) add("stale");
    if (!marks.from.empty()) add("from " + marks.from);
    addAll(Kind::kForPeople);
    const std::string_view head = split.head.substr(0, split.head.find_last_not_of(kBlanks) + 1);
    if (list.empty()) return std::string(head);
    // Blanks before the annotations stay; without any, two are added.
    std::string_view gap = split.head.substr(head.size());
    if (split.parts.empty() || gap.empty()) gap = "  ";
    return std::string(head).append(gap).append(kName).append(" ").append(list);
}

bool ShowTheSame(Units a, Units b) {
    std::vector<unsigned short> roomOfA;
    std::vector<unsigned short> roomOfB;
    return std::ranges::equal(Compared(a, roomOfA), Compared(b, roomOfB));
}

std::string ReferenceDigest(Units written) {
    std::vector<unsigned short> room;
    const std::string text = Utf8(Compared(written, room));
    char digits[kDigestLength + 1];
    std::snprintf(digits, sizeof digits, "%06x",
                  static_cast<unsigned>(XXH3_64bits(text.data(), text.size()) & 0xFFFFFF));
    return digits;
}

}  // namespace tool
