#pragma once
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "wordlex/functionality/ImageReader.h"

namespace lexon_private {

// The part of a binary file before its body.
struct BinaryHeader {
    enum class Body { kVersion10, kVersion15, kVersion2 };

    Body body = Body::kVersion2;
    std::int8_t major = 0;
    std::int8_t minor = 0;
    char encoding = 0;  // of version 1 values; 0 means UTF-16
    lexon::EndianT order = lexon::EndianT::kHost;
    // Version 2 only; also absent when the image ends right after the locale's length.
    std::optional<std::string> locale;
};

// Whether the bytes begin like a binary dictionary.
bool HasBinaryMagic(const char* bytes, std::size_t count) noexcept;

// Reads the 21 bytes of the magic; returns whether they match.
bool PassMagic(ImageReader& reader);
// Reads the part between the magic and the body. Afterwards the reader is at the body, in its byte
// order. If it is not Ok() then, the file has an unknown version or ends inside the header or the
// locale block.
BinaryHeader ReadBinaryHeader(ImageReader& reader);

// Writes header and locale block; a null `locale` is the default one. `encoded` means that the
// caller passed an encoding, which the header records. Returns the number of bytes accepted.
std::uint32_t WriteBinaryHeader(std::ostream& out, bool encoded, lexon::EndianT order,
                                const char* locale);

}  // namespace lexon_private
