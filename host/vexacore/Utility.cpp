#include "host/vexacore/Utility.h"

#include <unicode/ustring.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

namespace vexacore::utility {

namespace {

constexpr UChar32 kReplacement = 0xFFFD;

std::int32_t LengthForIcu(std::size_t length) {
    if (length > std::numeric_limits<std::int32_t>::max())
        throw std::length_error("text too long to convert");
    return static_cast<std::int32_t>(length);
}

}  // namespace

UTF16String AsciiToUTF16(const char* text, std::size_t length) {
    // Through unsigned char: a byte above 127 keeps its value.
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    return UTF16String(bytes, bytes + length);
}

UTF16String AsciiToUTF16(const char* text) { return AsciiToUTF16(text, std::strlen(text)); }

UTF16String UTF8to16(std::string_view text) {
    UTF16String result(text.size(), u'\0');  // no byte yields more than one unit
    const std::int32_t capacity = LengthForIcu(result.size());
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.data(), capacity, &length, text.data(), capacity, kReplacement,
                         nullptr, &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::string UTF16toStdString(const UTF16String& text) {
    std::string result(text.size() * 3, '\0');  // no unit yields more than three bytes
    const std::int32_t capacity = LengthForIcu(result.size());
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(result.data(), capacity, &length, text.data(), LengthForIcu(text.size()),
                       kReplacement, nullptr, &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

UTF16String StdToUTF16String(std::string_view text) { return UTF8to16(text); }

UTF16String MACtoVEXA(CFStringRef text) {
    if (!text) return UTF16String();
    std::vector<UniChar> units(static_cast<std::size_t>(CFStringGetLength(text)));
    CFStringGetCharacters(text, CFRangeMake(0, CFStringGetLength(text)), units.data());
    return UTF16String(units.begin(), units.end());
}

}  // namespace vexacore::utility
