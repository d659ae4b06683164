#include "tools/check/Punctuation.h"

#include <algorithm>
#include <string>

namespace tool {

namespace {

bool IsBlank(unsigned short unit) {
    return unit == ' ' || unit == '\t' || unit == 0x00A0 || unit == 0x202F;
}

bool IsIn(Units text, unsigned short first, unsigned short last) {
    return std::ranges::any_of(text,
                               [=](unsigned short unit) { return unit >= first && unit <= last; });
}

constexpr std::u16string_view kClosing =
    u")]}>\"'\u00BB\u00AB\u2019\u2018\u201D\u201C\u201E\u203A\u2039\uFF09\u3011\u300D\u300F\u300B"
    u"\u200E\u200F";

struct Row {
    std::u16string_view marks;
    std::string_view kind;
};
constexpr std::string_view kNothing = "no punctuation";
constexpr std::string_view kEllipsis = "an ellipsis";
constexpr Row kMarks[] = {
    {u"\u2026\u22EF", kEllipsis},
    {u".\u3002\uFF0E\uFF61\u0964\u0589\u1362\u06D4", "a full stop"},
    {u"?\uFF1F\u061F\u037E\u055E", "a question mark"},
    {u"!\uFF01\u055C", "an exclamation mark"},
    {u":\uFF1A", "a colon"},
    {u",\uFF0C\u3001\u060C", "a comma"},
    {u";\uFF1B\u061B", "a semicolon"},
};

}  // namespace

OuterBlanks BlanksAround(Units text) {
    OuterBlanks blanks{0, 0, false};
    while (blanks.before < text.size() && IsBlank(text[blanks.before]))
        ++blanks.before;
    text = text.subspan(blanks.before);
    while (blanks.after < text.size() && IsBlank(text[text.size() - 1 - blanks.after]))
        ++blanks.after;
    if (text.empty()) return blanks;
    const unsigned short last = text[text.size() - 1 - blanks.after];
    blanks.wideEnd = (last >= 0x3000 && last <= 0x30FF) || (last >= 0xFF00 && last <= 0xFFEF);
    return blanks;
}

std::size_t LineBreaks(Units text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'))) {
            ++count;
        }
    }
    return count;
}

FinalMark FinalPunctuation(Units text) {
    const bool mayLackStop =
        IsIn(text, 0x0E00, 0x0FFF) || IsIn(text, 0x1000, 0x109F) || IsIn(text, 0x1780, 0x17FF);
    const bool isGreek = IsIn(text, 0x0391, 0x03C9);
    while (!text.empty()) {
        const std::size_t size = text.size();
        const unsigned short last = text.back();
        const bool isAccelerator = size >= 4 && last == ')' && text[size - 3] == '&';
        if (isAccelerator) {
            text = text.first(size - 4);
        } else if (IsBlank(last) || last == '\n' || last == '\r' ||
                   kClosing.find(last) != kClosing.npos) {
            text = text.first(size - 1);
        } else {
            break;
        }
    }
    if (text.empty()) return {kNothing, 0, mayLackStop};
    const std::size_t at = text.size() - 1;
    const auto repeats = [&](unsigned short stop) {
        return at >= 2 && text[at] == stop && text[at - 1] == stop && text[at - 2] == stop;
    };
    if (repeats('.') || repeats(0x3002)) return {kEllipsis, at, mayLackStop};
    if (text[at] == ';' && isGreek) return {"a question mark", at, mayLackStop};
    for (const Row& row : kMarks) {
        if (row.marks.find(text[at]) != row.marks.npos) return {row.kind, at, mayLackStop};
    }
    return {kNothing, at, mayLackStop};
}

}  // namespace tool
