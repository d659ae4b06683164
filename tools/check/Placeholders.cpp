#include "tools/check/Placeholders.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace tool {

namespace {

constexpr std::string_view kTag = "<param ";

bool IsDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }
bool IsNamePart(unsigned short unit) {
    return IsDigit(unit) || unit == '_' || (unit >= 'A' && unit <= 'Z') ||
           (unit >= 'a' && unit <= 'z');
}

std::size_t NameLength(Units text) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, IsNamePart) - text.begin());
}

// "{name}" and "${name}"
std::size_t BracedAt(Units text) {
    const std::size_t dollar = text.front() == '$' ? 1 : 0;
    if (text.size() < dollar + 3 || text[dollar] != '{') return 0;
    const std::size_t name = NameLength(text.subspan(dollar + 1));
    const std::size_t end = dollar + 1 + name;
    return name != 0 && end < text.size() && text[end] == '}' ? end + 1 : 0;
}

// "%d", "%1$s", "%.2f", "%@", "%(name)s". "100 % des" has a blank and "%%" is a percent sign.
std::size_t PercentAt(Units text, bool afterDigit) {
    if (text.front() != '%' || afterDigit) return 0;
    std::size_t at = 1;
    const auto isFlag = [](unsigned short unit) {
        return IsDigit(unit) || unit == '$' || unit == '.' || unit == '-' || unit == '+' ||
               unit == 'l' || unit == 'h' || unit == 'z';
    };
    while (at < text.size() && isFlag(text[at]))
        ++at;
    constexpr std::string_view kKinds = "diouxXeEfgGcspn@";
    const bool ends = at + 1 >= text.size() || !IsNamePart(text[at + 1]);
    const bool isKind = at < text.size() && text[at] < 0x80 &&
                        kKinds.find(static_cast<char>(text[at])) != kKinds.npos;
    return isKind && ends ? at + 1 : 0;
}

}  // namespace

std::size_t HtmlEntityAt(Units text, std::size_t i) {
    constexpr std::string_view kNames[] = {"amp", "lt", "gt", "quot", "apos", "nbsp"};
    const Units rest = text.subspan(i);
    if (rest.size() < 4 || rest.front() != '&') return 0;
    const std::size_t sign = rest[1] == '#' ? 1 : 0;
    const std::size_t length = NameLength(rest.subspan(1 + sign));
    const std::size_t end = 1 + sign + length;
    if (length == 0 || end >= rest.size() || rest[end] != ';') return 0;
    const std::string name = Utf8(rest.subspan(1, end - 1));
    const bool known = sign != 0 || std::ranges::find(kNames, name) != std::end(kNames);
    return known ? end + 1 : 0;
}

bool PassPlaceholder(Units text, std::size_t& i) {
    const bool isMarker =
        text[i] == u'^' && i + 1 < text.size() && text[i + 1] >= u'0' && text[i + 1] <= u'9';
    if (isMarker) {
        i += 2;
        return true;
    }
    if (!std::ranges::equal(text.subspan(i, std::min(kTag.size(), text.size() - i)), kTag)) {
        return false;
    }
    while (i < text.size() && text[i++] != '>') {
    }
    return true;
}

bool HasLetters(Units text) {
    for (std::size_t i = 0; i < text.size();) {
        if (PassPlaceholder(text, i)) continue;
        if (u_isalpha(static_cast<UChar32>(NextCharacter(text, i)))) return true;
    }
    return false;
}

std::vector<Placeholder> Markers(Units text) {
    std::vector<Placeholder> markers;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != '^' || !IsDigit(text[i + 1])) continue;
        markers.push_back({Utf8(text.subspan(i, 2)), i, i + 2});
        ++i;
    }
    return markers;
}

std::optional<Placeholder> MisspeltMarker(Units text, const std::string& marker) {
    const auto digit = static_cast<unsigned char>(marker.back());
    const auto wide = static_cast<unsigned short>(digit - '0' + 0xFF10);
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const bool afterDigit = i > 0 && IsDigit(text[i - 1]);
        const bool isSign = (text[i] == '%' && !afterDigit) || text[i] == '$';
        const bool isHat = text[i] == '^';
        const bool hasBlank = isHat && text[i + 1] == ' ' && i + 2 < text.size();
        const std::size_t last = hasBlank ? i + 2 : i + 1;
        const bool isWhole =
            last + 1 == text.size() || (text[last + 1] != '$' && !IsNamePart(text[last + 1]));
        if (((isSign || isHat) && text[last] == digit && isWhole) ||
            (isHat && text[last] == wide)) {
            return Placeholder{Utf8(text.subspan(i, last + 1 - i)), i, last + 1};
        }
    }
    return std::nullopt;
}

// The quoted texts that the string class finds as the name of a tag.
std::vector<Placeholder> Parameters(const Text& text) {
    std::vector<Placeholder> tags;
    const Units units = UnitsOf(text);
    std::set<std::string> tried;
    auto opening = std::ranges::find(units, u'"');
    while (opening != units.end()) {
        const auto closing = std::find(opening + 1, units.end(), u'"');
        if (closing == units.end()) break;
        const std::string name = Utf8(Units(opening + 1, closing));
        // The text around the tag does not change: the tag begins at the first difference, and its
        // length is the difference of the lengths.
        Text rest = text;
        std::size_t removed = 0;
        for (bool more = tried.insert(name).second; more;) {
            const Text before = rest;
            if (!SubstituteParameter(rest, name, {})) break;
            const Units old = UnitsOf(before);
            const std::size_t length = old.size() - rest.GetLength();
            // Of several candidates that equal the text after the tag, the tag begins with "<".
            auto at = static_cast<std::size_t>(std::ranges::mismatch(old, UnitsOf(rest)).in1 -
                                               old.begin());
            while (at > 0 && (old[at] != '<' || old[at + length - 1] != '>'))
                --at;
            tags.push_back({name, at + removed, at + removed + length});
            removed += length;
        }
        opening = closing;
    }
    std::ranges::stable_sort(tags, {}, &Placeholder::begin);
    return tags;
}

std::vector<Placeholder> ForeignPlaceholders(Units text) {
    std::vector<Placeholder> found;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Units rest = text.subspan(i);
        // "#{name}" is an unknown escape, which is a finding of its own.
        const bool isEscape = i > 0 && text[i - 1] == '#';
        const bool isSign = (rest.front() == '{' && !isEscape) || rest.front() == '$';
        std::size_t length = isSign ? BracedAt(rest) : 0;
        if (length == 0) length = PercentAt(rest, i > 0 && IsDigit(text[i - 1]));
        if (length == 0) length = HtmlEntityAt(text, i);
        if (length == 0) continue;
        found.push_back({Utf8(text.subspan(i, length)), i, i + length});
        i += length - 1;
    }
    return found;
}

}  // namespace tool
