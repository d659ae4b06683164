#pragma once
#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "wordlex/functionality/BinaryFormat.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// Buckets of a hash table and slots of a compact store. A prime. On disk: never change.
inline constexpr unsigned long kHashBucketCount = 1021;

// The key hash of both stores. On disk: never change. Samples the key at the multiples of a fifth
// of its length, so at most nine bytes; of a key shorter than five bytes, every byte. In [0,
// bucketCount).
unsigned long HashBytes(const unsigned char* bytes, unsigned long length,
                        unsigned long bucketCount) noexcept;
unsigned long HashFunc(const unsigned char* bytes, unsigned long length) noexcept;

// Whether multi-byte fields in the given byte order differ from this machine's. A value other than
// the three orders means the machine's own.
bool setEndian(lexon::EndianT order) noexcept;

template <std::unsigned_integral T>
constexpr T ByteSwap(T value) noexcept {
    if constexpr (sizeof(T) == 1) return value;
    if constexpr (sizeof(T) == 2) return __builtin_bswap16(value);
    if constexpr (sizeof(T) == 4) return __builtin_bswap32(value);
    if constexpr (sizeof(T) == 8) return __builtin_bswap64(value);
}

// Calls write(bytes, byteCount) with the units in the other byte order, some at a time.
template <class Write>
void WriteSwapped(const unsigned short* units, std::size_t count, Write write) {
    std::array<unsigned short, 256> swapped;
    while (count != 0) {
        const std::size_t step = std::min(count, swapped.size());
        std::transform(units, units + step, swapped.begin(), ByteSwap<unsigned short>);
        write(reinterpret_cast<const char*>(swapped.data()), step * sizeof *units);
        units += step;
        count -= step;
    }
}

// The part of a written file's header before the byte order.
struct wbfid_ {
    const char* identification;  // NUL-terminated
    std::uint8_t major;
    std::uint8_t minor;
    std::uint8_t encoding;  // of the values of version 1 files; version 2 values are UTF-16
};
inline constexpr wbfid_ wbfid{wbfidstr, kWrittenMajor, kWrittenMinor, 0};
inline constexpr wbfid_ wbfid_utf8{wbfidstr, kWrittenMajor, kWrittenMinor, 1};

// Write the header, or the locale block in the given byte order. Each returns the number of bytes
// that the stream accepted. A stream that accepts fewer than all is bad afterwards.
std::uint32_t wbfwrite_wbfid(std::ostream& out, const wbfid_& id, lexon::EndianT order);
std::uint32_t wbfwrite_deflocale(std::ostream& out, lexon::EndianT order);
std::uint32_t wbfwrite_locale(std::ostream& out, const char* name, std::uint32_t length,
                              lexon::EndianT order);

}  // namespace lexon_private
