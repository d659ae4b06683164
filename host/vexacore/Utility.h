#pragma once
// Conversions between 8-bit text and UTF-16. None fails on malformed text. Exhausted memory throws
// std::bad_alloc; a result of more than 2 GiB throws std::length_error.

#include <cstddef>
#include <string>
#include <string_view>

#include "host/CoreFoundation/CoreFoundation.h"
#include "host/vexacore/String.h"

namespace vexacore::utility {

// Each byte becomes the unit of the same value, 0 to 255.
UTF16String AsciiToUTF16(const char* text, std::size_t length);
UTF16String AsciiToUTF16(const char* text);  // up to the terminating NUL

// A sequence that is cut short becomes one U+FFFD, and so does each other byte that cannot begin or
// continue a sequence: two for the overlong C0 80, three for the surrogate ED A0 80.
UTF16String UTF8to16(std::string_view text);

// The 8-bit form that the file system takes: UTF-8. An unpaired surrogate becomes U+FFFD.
std::string UTF16toStdString(const UTF16String& text);
// The reverse; see UTF8to16.
UTF16String StdToUTF16String(std::string_view text);

// A string of the platform; all its units stay as they are. Null returns the empty string.
UTF16String MACtoVEXA(CFStringRef text);

}  // namespace vexacore::utility
