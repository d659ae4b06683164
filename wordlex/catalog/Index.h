#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
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

    std::uint16_t digests[kPlaces];  // 0: no key
    std::uint16_t keyLengths[kPlaces];
    std::uint16_t textLengths[kPlaces];
    std::uint16_t zeros[kPlaces];
    std::uint32_t keyOffsets[kPlaces];   // in the key area
    std::uint32_t textOffsets[kPlaces];  // in the text area
};
static_assert(sizeof(Bucket) == 64);

// The digests of a bucket, compared at once.
class Digests {
public:
    explicit Digests(const std::byte* bucket) noexcept {
        static_assert(sizeof all == sizeof(Bucket::digests));
        std::memcpy(&all, bucket + offsetof(Bucket, digests), sizeof all);
    }
    // Marks the places with this digest.
    std::uint64_t Matches(std::uint16_t digest) const noexcept {
        return Zeros(all ^ kOnes * digest);
    }
    // Marks the places without a key.
    std::uint64_t Empty() const noexcept { return Zeros(all); }

    // The place of the first mark, and all marks but that one.
    static std::uint32_t First(std::uint64_t marks) noexcept {
        if constexpr (std::endian::native == std::endian::little)
            return static_cast<std::uint32_t>(std::countr_zero(marks)) / kBits;
        return Bucket::kPlaces - 1 - static_cast<std::uint32_t>(std::countr_zero(marks)) / kBits;
    }
    static std::uint64_t WithoutFirst(std::uint64_t marks) noexcept { return marks & (marks - 1); }

private:
    static constexpr std::uint32_t kBits = 16;
    static constexpr std::uint64_t kOnes = 0x0001'0001'0001'0001;

    // The highest bit of each of the four numbers that is 0.
    static std::uint64_t Zeros(std::uint64_t four) noexcept {
        constexpr std::uint64_t kLowBits = kOnes * 0x7FFF;
        return ~(((four & kLowBits) + kLowBits) | four | kLowBits);
    }

    std::uint64_t all;
};

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
    static std::uint16_t DigestOf(std::uint64_t hash) noexcept {
        return static_cast<std::uint16_t>(hash | 1);  // never 0
    }

    // A place, and its fields in the bucket.
    struct Place {
        const std::byte* bucket;
        std::uint32_t inBucket;

        // `fields` is the offset of the four fields in the bucket.
        template <class T>
        T Field(std::size_t fields) const noexcept {
            T value;
            std::memcpy(&value, bucket + fields + inBucket * sizeof(T), sizeof value);
            return value;
        }
    };
    std::uint32_t EntryAt(const Place& place) const noexcept {
        const auto before = static_cast<std::size_t>(place.bucket - buckets.data());
        return ItemAt<std::uint32_t>(entries,
                                     before / sizeof(Bucket) * Bucket::kPlaces + place.inBucket);
    }

    // The first place with the digest of the hash in the key's bucket.
    std::optional<Place> FirstPlace(std::uint64_t hash) const noexcept {
        if (bucketCount == 0) return std::nullopt;
        const std::byte* const bucket = BucketAt(Home(hash, bucketCount));
        const std::uint64_t marks = Digests(bucket).Matches(DigestOf(hash));
        if (marks == 0) return std::nullopt;
        return Place{bucket, Digests::First(marks)};
    }
    // The first place with the digest of the hash for which hasKey(place) is true.
    template <class HasKey>
    std::optional<Place> Find(std::uint64_t hash, HasKey hasKey) const noexcept {
        if (bucketCount == 0) return std::nullopt;
        const std::uint16_t digest = DigestOf(hash);
        std::uint32_t at = Home(hash, bucketCount);
        for (std::uint32_t probe = 0; probe <= longestProbe; ++probe) {
            const std::byte* const bucket = BucketAt(at);
            const Digests digests(bucket);
            for (auto left = digests.Matches(digest); left != 0;
                 left = Digests::WithoutFirst(left)) {
                const Place place = {bucket, Digests::First(left)};
                if (hasKey(place)) return place;
            }
            if (digests.Empty() != 0) break;
            if (++at == bucketCount) at = 0;
        }
        return std::nullopt;
    }

private:
    const std::byte* BucketAt(std::uint32_t number) const noexcept {
        return buckets.data() + std::size_t{number} * sizeof(Bucket);
    }
};

// An index with the owner of its memory.
struct MadeIndex {
    Index index;
    std::shared_ptr<const void> keeper;
};

}  // namespace lexon::detail
