#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "wordlex/catalog/Bytes.h"

namespace lexon::detail {

// Four keys, with everything that a look-up needs about them, in one cache line. Offsets and
// lengths are bytes. On disk in the index of a file, field by field in the file's byte order: never
// change.
struct alignas(64) Bucket {
    static constexpr std::uint32_t kPlaces = 4;
    // For this length, the strings' table has the real one.
    static constexpr std::uint32_t kLongLength = 0xFFFF;

    std::uint32_t digests[kPlaces];      // 0: no key
    std::uint32_t keyOffsets[kPlaces];   // in the key area
    std::uint32_t textOffsets[kPlaces];  // in the text area
    std::uint16_t keyLengths[kPlaces];
    std::uint16_t textLengths[kPlaces];
};
static_assert(sizeof(Bucket) == 64);

// A closed hash table of buckets. A key is in the bucket of its hash, or when that is full, in one
// of the next ones, at most `longestProbe` buckets further; the first follows the last. Places are
// numbered through all buckets.
struct Index {
    Bytes buckets;
    Bytes entries;  // the entry of each place, 32 bits
    std::uint32_t bucketCount = 0;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed = 0;

    static std::uint64_t Hash(std::string_view key, std::uint64_t seed) noexcept {
        return XXH3_64bits_withSeed(key.data(), key.size(), seed);
    }
    static std::uint32_t Home(std::uint64_t hash, std::uint32_t bucketCount) noexcept {
        return static_cast<std::uint32_t>(((hash >> 32) * bucketCount) >> 32);
    }
    static std::uint32_t DigestOf(std::uint64_t hash) noexcept {
        const auto low = static_cast<std::uint32_t>(hash);
        return low != 0 ? low : 1;
    }
    // Which of a bucket's digests equal this one: a bit for each, the lowest for the first.
    static std::uint32_t Matches(const std::byte* bucket, std::uint32_t digest) noexcept {
        return Join((Digests(bucket) == digest) & Four{1, 2, 4, 8});
    }
    // The same in the lowest four bits; the next four say which digests are 0.
    static std::uint32_t MatchesAndEmpty(const std::byte* bucket, std::uint32_t digest) noexcept {
        const Four digests = Digests(bucket);
        return Join(((digests == digest) & Four{1, 2, 4, 8}) |
                    ((digests == 0) & Four{16, 32, 64, 128}));
    }

    // The field of a place; `fields` is its offset in the bucket.
    template <class T>
    T Field(std::size_t place, std::size_t fields) const noexcept {
        return LoadAt<T>(buckets, place / Bucket::kPlaces * sizeof(Bucket) + fields +
                                      place % Bucket::kPlaces * sizeof(T));
    }
    std::uint32_t EntryAt(std::size_t place) const noexcept {
        return ItemAt<std::uint32_t>(entries, place);
    }

    static constexpr std::size_t kNowhere = ~std::size_t{0};
    // The place with the hash for which hasKey(place) is true, or kNowhere.
    template <class HasKey>
    std::size_t Find(std::uint64_t hash, HasKey hasKey) const noexcept {
        if (bucketCount == 0) return kNowhere;
        const std::uint32_t digest = DigestOf(hash);
        std::uint32_t at = Home(hash, bucketCount);
        for (std::uint32_t probe = 0; probe <= longestProbe; ++probe) {
            const std::byte* const bucket = buckets.data() + std::size_t{at} * sizeof(Bucket);
            for (auto left = Matches(bucket, digest); left != 0; left &= left - 1) {
                const std::size_t place = std::size_t{at} * Bucket::kPlaces +
                                          static_cast<std::size_t>(std::countr_zero(left));
                if (hasKey(place)) return place;
            }
            if (Matches(bucket, 0) != 0) return kNowhere;
            if (++at == bucketCount) at = 0;
        }
        return kNowhere;
    }

private:
    typedef std::uint32_t Four __attribute__((vector_size(16)));  // compared at once
    static_assert(offsetof(Bucket, digests) == 0 && sizeof(Four) == sizeof(Bucket::digests));

    static Four Digests(const std::byte* bucket) noexcept {
        Four digests;
        std::memcpy(&digests, bucket, sizeof digests);
        return digests;
    }
    template <class Bits>
    static std::uint32_t Join(Bits bits) noexcept {
        std::uint64_t halves[2];
        std::memcpy(halves, &bits, sizeof halves);
        const std::uint64_t both = halves[0] | halves[1];
        return static_cast<std::uint32_t>(both | both >> 32);
    }
};

// An index with the owner of its memory.
struct MadeIndex {
    Index index;
    std::shared_ptr<const void> keeper;
};

}  // namespace lexon::detail
