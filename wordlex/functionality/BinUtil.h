#pragma once
#include <cstdint>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// Buckets of a hash table and slots of a compact store: a prime, and on disk: never change.
inline constexpr unsigned long kHashBucketCount = 1021;

// The key hash of both stores, on disk: never change. Samples the key at the multiples of a fifth
// of its length, so at most nine bytes; shorter than five bytes, every byte. In [0, bucketCount).
unsigned long HashBytes(const unsigned char* bytes, unsigned long length,
                        unsigned long bucketCount) noexcept;
unsigned long HashFunc(const unsigned char* bytes, unsigned long length) noexcept;

// A digest of all bytes of a key, in memory only: tells apart most keys that share a bucket.
std::uint16_t KeyTag(const unsigned char* bytes, unsigned long length) noexcept;

// Whether multi-byte fields in the given byte order differ from this machine's.
bool setEndian(lexon::EndianT order) noexcept;

}  // namespace lexon_private
