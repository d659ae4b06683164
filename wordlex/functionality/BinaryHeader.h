#pragma once
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "wordlex/functionality/ImageReader.h"

namespace lexon_private {

// What a binary file says ahead of its body.
struct BinaryHeader {
    enum class Body { kVersion10, kVersion15, kVersion2 };

    Body body = Body::kVersion2;
    std::int8_t major = 0;
    std::int8_t minor = 0;
    char encoding = 0;  // of version 1 values; 0 means UTF-16
    lexon::EndianT order = lexon::EndianT::kHost;
    // Version 2 only; absent too when the image ends right behind the locale's length.
    std::optional<std::string> locale;
};

// Whether the bytes begin like a binary dictionary.
bool HasBinaryMagic(const char* bytes, std::size_t count) noexcept;

// Passes over the 21 bytes of the magic; whether it is them.
bool PassMagic(ImageReader& reader);
// Reads what stands between the magic and the body, after which the reader stands at the body and
// in its byte order. When it is not Ok() afterwards, the file is none of ours: unknown version, or
// an end inside the header or the locale block.
BinaryHeader ReadBinaryHeader(ImageReader& reader);

// Writes header and locale block; a null `locale` is the default one. `encoded` tells that the
// caller gave an encoding, which the header records. Gives the number of bytes taken.
std::uint32_t WriteBinaryHeader(std::ostream& out, bool encoded, lexon::EndianT order,
                                const char* locale);

}  // namespace lexon_private
