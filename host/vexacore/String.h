#pragma once
// The host's strings. Every path, identity value and localized text is a UTF16String; documents and
// pieces of UTF-8 are ByteStrings.
//
// Units:    UTF16String counts 16-bit units in host byte order, ByteString counts bytes. Neither
//           promises well-formed text.

#include <string>

#include "host/vexacore/SmallBlockAllocator.h"

namespace vexacore {

using UTF16String =
    std::basic_string<char16_t, std::char_traits<char16_t>, SmallBlockAllocator<char16_t>>;
using ByteString = std::basic_string<char, std::char_traits<char>, SmallBlockAllocator<char>>;

}  // namespace vexacore
