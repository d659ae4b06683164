#include "wordlex/functionality/UnicodeChar.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace lexon_private {

namespace {

struct DigitRange {
    unsigned short first;
    unsigned short last;
};

constexpr DigitRange decimalDigitRanges[] = {
    // the first match wins: keep the order
    {0x0030, 0x0039},  // ASCII
    {0xFF10, 0xFF19},  // fullwidth
    {0x2070, 0x2079},  // superscripts; 2071-2073 are overridden in GetDecimalDigit
    {0x2080, 0x2089},  // subscripts
    {0x0660, 0x0669},  // Arabic-Indic
    {0x06F0, 0x06F9},  // extended Arabic-Indic
    {0x0966, 0x096F},  // Devanagari
    {0x09E6, 0x09EF},  // Bengali
    {0x0A66, 0x0A6F},  // Gurmukhi
    {0x0AE6, 0x0AEF},  // Gujarati
    {0x0B66, 0x0B6F},  // Oriya
    {0x0BE6, 0x0BEF},  // Tamil; 0BE6 is overridden in GetDecimalDigit
    {0x0C66, 0x0C6F},  // Telugu
    {0x0CE6, 0x0CEF},  // Kannada
    {0x0D66, 0x0D6F},  // Malayalam
    {0x0E50, 0x0E59},  // Thai
    {0x0ED0, 0x0ED9},  // Lao
    {0x0F20, 0x0F29},  // Tibetan
};
static_assert(std::size(decimalDigitRanges) == 18);
static_assert(std::ranges::all_of(decimalDigitRanges,
                                  [](DigitRange r) { return r.last - r.first == 9; }));

bool IsOneOf(std::u16string_view set, unsigned short unit) noexcept {
    return set.find(static_cast<char16_t>(unit)) != std::u16string_view::npos;
}

}  // namespace

signed char UnicodeChar::GetDecimalDigit(unsigned short unit) noexcept {
    switch (unit) {
        case 0x00B9:
            return 1;
        case 0x00B2:
            return 2;
        case 0x00B3:
            return 3;
        case 0x2071:
        case 0x2072:
        case 0x2073:  // gaps among the superscripts
        case 0x0BE6:  // Tamil counts from one
            return -1;
        default:
            break;
    }
    for (const DigitRange& range : decimalDigitRanges) {
        if (range.first <= unit && unit <= range.last) {
            return static_cast<signed char>(unit - range.first);
        }
    }
    return -1;
}

bool UnicodeChar::IsMinusSign(unsigned short unit) noexcept {
    return IsOneOf(u"\u002D\u207B\u208B\u2212\uFE63\uFF0D", unit);
}

bool UnicodeChar::IsPlusSign(unsigned short unit) noexcept {
    return IsOneOf(u"\u002B\u207A\u208A\uFE62\uFF0B", unit);
}

bool UnicodeChar::IsWhiteSpace(unsigned short unit) noexcept {
    return (0x0009 <= unit && unit <= 0x000D) || (0x2000 <= unit && unit <= 0x200B) ||
           IsOneOf(u"\u0020\u00A0\u2028\u2029\u3000\uFEFF", unit);
}

}  // namespace lexon_private
