#pragma once
// Character classes and case of locale names: ASCII alone, whatever locale the process has set. In
// some locales the functions of <cctype> count bytes above 0x7F as letters.

namespace localeid {

constexpr bool IsAsciiUpper(char c) noexcept { return c >= 'A' && c <= 'Z'; }
constexpr bool IsAsciiLower(char c) noexcept { return c >= 'a' && c <= 'z'; }
constexpr bool IsAsciiAlnum(char c) noexcept {
    return IsAsciiUpper(c) || IsAsciiLower(c) || (c >= '0' && c <= '9');
}
constexpr char ToAsciiUpper(char c) noexcept {
    return IsAsciiLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char ToAsciiLower(char c) noexcept {
    return IsAsciiUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace localeid
