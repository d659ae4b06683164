#pragma once
// The only place for the numbers of binary dictionary files. docs/binary-format.md describes the
// layout. All of it is on disk: never change.

#include <cstdint>
#include <string_view>

namespace lexon_private {

inline constexpr char wbfidstr[] = "Wordlex Binary Format";  // the NUL is not written
inline constexpr std::string_view kBinaryMagic = wbfidstr;
static_assert(kBinaryMagic.size() == 21);

// The written version, and the versions that are read: 2.0 to 2.127, 1.5 and 1.0.
inline constexpr std::uint8_t kWrittenMajor = 2;
inline constexpr std::uint8_t kWrittenMinor = 7;

// The byte-order byte, present from version 2.1 on. Readers use only its lowest bit.
inline constexpr std::uint8_t kBigEndianFile = 1;
inline constexpr std::uint8_t kLittleEndianFile = 0;

// The locale of a dictionary without one of its own.
inline constexpr char defaultLocale[] = "en_US";

// Whether the entries of a version 2 image have keys. Readers treat any other byte as "Y".
inline constexpr std::uint8_t kKeyed = 'Y';
inline constexpr std::uint8_t kNotKeyed = 'N';

}  // namespace lexon_private
