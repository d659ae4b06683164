#pragma once

namespace lexon_private {

// Classes of single UTF-16 code units.
class UnicodeChar {
public:
    // The unit with its two bytes swapped.
    static unsigned short ByteSwap(unsigned short unit) noexcept {
        return static_cast<unsigned short>(unit << 8 | unit >> 8);
    }
    // 0 to 9 for the decimal digits of the scripts in the table (of Unicode's general category Nd,
    // without the Tamil zero) and the super- and subscript digits, else -1.
    static signed char GetDecimalDigit(unsigned short unit) noexcept;
    static bool IsMinusSign(unsigned short unit) noexcept;
    static bool IsPlusSign(unsigned short unit) noexcept;
    static bool IsWhiteSpace(unsigned short unit) noexcept;
};

}  // namespace lexon_private
