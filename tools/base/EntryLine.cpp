#include "tools/base/EntryLine.h"

#include <algorithm>

#include "wordlex/functionality/Escapes.h"

namespace tool {

namespace {

using Line = std::vector<unsigned short>;

void Append(Line& line, std::string_view ascii) {
    line.insert(line.end(), ascii.begin(), ascii.end());
}

void AppendNumber(Line& line, unsigned short unit) { Append(line, "#{" + CodePoint(unit) + "}"); }

bool IsDigit(Units units, std::size_t i) {
    return i < units.size() && units[i] >= u'0' && units[i] <= u'9';
}

bool IsControl(unsigned short unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

// Units that no other escape protects.
bool NeedsNumber(Units value, std::size_t i) {
    const unsigned short unit = value[i];
    const unsigned short next = i + 1 < value.size() ? value[i + 1] : 0;
    // Doubled before the closing mark, "\" would escape the mark.
    return (unit == u'\\' && next == 0) || (unit == u'#' && next == u'{') || IsHidden(value, i);
}

// The unit after "\" that stands for `unit`, or 0.
unsigned short BackslashEscape(unsigned short unit) {
    const auto* row = lexon_private::Escapes::Backslash();
    while (row->escape != 0 && row->replacement != unit)
        ++row;
    return row->escape;
}

}  // namespace

bool IsHidden(Units value, std::size_t i) {
    constexpr struct {
        unsigned short first, last;
    } kHidden[] = {{0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F},
                   {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xFFFE, 0xFFFF}};
    const unsigned short unit = value[i];
    return IsControl(unit) || IsUnpairedSurrogate(value, i) ||
           std::ranges::any_of(
               kHidden, [unit](auto range) { return unit >= range.first && unit <= range.last; });
}

void AppendValue(Line& line, Units value) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        const unsigned short unit = value[i];
        if (const unsigned short escape = BackslashEscape(unit); escape != 0) {
            line.push_back(u'\\');
            line.push_back(escape);
        } else if (NeedsNumber(value, i)) {
            AppendNumber(line, unit);
        } else if (unit == u'\\' || (unit == u'^' && !IsDigit(value, i + 1))) {
            line.insert(line.end(), 2, unit);
        } else {
            line.push_back(unit);
        }
    }
}

void AppendWritten(Line& line, Units written) {
    unsigned short escape = 0;  // the unit before, where it begins an escape
    for (std::size_t i = 0; i < written.size(); ++i) {
        const unsigned short unit = written[i];
        const bool beginsEscape = escape == 0 && (unit == u'\\' || unit == u'^');
        const bool isLast = i + 1 == written.size();
        if (escape == u'\\' && unit == u'"') {
            line.push_back(unit);
        } else if (unit == u'\\' && isLast) {  // would escape the closing mark
            if (escape == unit) line.pop_back();
            if (escape == u'^') line.push_back(escape);
            AppendNumber(line, unit);
        } else if (unit == u'"' || IsHidden(written, i)) {
            if (escape != 0) line.push_back(escape);  // doubled, it stands for itself
            if (const unsigned short letter = BackslashEscape(unit); letter != 0) {
                line.push_back(u'\\');
                line.push_back(letter);
            } else {
                AppendNumber(line, unit);
            }
        } else {
            line.push_back(unit);
        }
        escape = beginsEscape ? unit : 0;
    }
}

void AppendKey(Line& line, std::string_view key) {
    Append(line, "$$$");
    for (const char c : key) {
        const unsigned short unit = static_cast<unsigned char>(c);
        const bool cannotStand = IsControl(unit) || unit == u'"' || unit == u'=';
        line.push_back(cannotStand ? unit + 0x100 : unit);
    }
}

Line EntryLine(std::string_view key, Units value) {
    Line line{u'"'};
    AppendKey(line, key);
    line.push_back(u'=');
    AppendValue(line, value);
    line.push_back(u'"');
    return line;
}

}  // namespace tool
