#pragma once
#include <algorithm>
#include <memory>

#include "wordlex/catalog/Index.h"

namespace lexon::detail {

// Fills an index of up to `most` keys, with seven places for four keys.
class IndexBuilder {
public:
    IndexBuilder(std::uint32_t most, std::uint64_t seed);

    // The hash of a key that is claimed soon; prefetches its bucket.
    std::uint64_t Prepare(std::string_view key) const noexcept {
        const std::uint64_t hash = Index::Hash(key, seed);
        __builtin_prefetch(&buckets[Index::Home(hash, bucketCount)], 1);
        return hash;
    }

    struct Claimed {
        std::size_t place;
        bool isNew;  // the caller sets the place
    };
    // keyOf(entry) is the key of an entry that was set.
    template <class KeyOf>
    Claimed Claim(std::string_view key, std::uint64_t hash, KeyOf keyOf) noexcept {
        const std::uint16_t digest = Index::DigestOf(hash);
        std::uint32_t at = Index::Home(hash, bucketCount);
        for (std::uint32_t probe = 0;; ++probe) {
            const Digests digests(reinterpret_cast<const std::byte*>(&buckets[at]));
            const std::size_t first = std::size_t{at} * Bucket::kPlaces;
            for (auto left = digests.Matches(digest); left != 0;
                 left = Digests::WithoutFirst(left)) {
                const std::size_t place = first + Digests::First(left);
                if (keyOf(entries[place]) == key) return {place, false};
            }
            if (const auto empty = digests.Empty()) {
                const std::size_t place = first + Digests::First(empty);
                buckets[at].digests[place % Bucket::kPlaces] = digest;
                if (probe > longestProbe) longestProbe = probe;
                return {place, true};
            }
            if (++at == bucketCount) at = 0;
        }
    }

    struct Extent {
        std::uint32_t offset;
        std::uint32_t length;
    };
    void Set(std::size_t place, std::uint32_t entry, Extent key, Extent text) noexcept {
        Bucket& bucket = buckets[place / Bucket::kPlaces];
        bucket.keyOffsets[place % Bucket::kPlaces] = key.offset;
        bucket.keyLengths[place % Bucket::kPlaces] = Short(key.length);
        entries[place] = entry;
        SetText(place, text);
    }
    void SetText(std::size_t place, Extent text) noexcept {
        Bucket& bucket = buckets[place / Bucket::kPlaces];
        bucket.textOffsets[place % Bucket::kPlaces] = text.offset;
        bucket.textLengths[place % Bucket::kPlaces] = Short(text.length);
    }
    std::uint32_t EntryAt(std::size_t place) const noexcept { return entries[place]; }

    MadeIndex Finish() &&;

    // Different in each process, so that nobody can prepare keys that collide.
    static std::uint64_t RandomSeed();

private:
    static std::uint16_t Short(std::uint32_t length) noexcept {
        return static_cast<std::uint16_t>(std::min(length, Bucket::kLongLength));
    }

    std::unique_ptr<Bucket[]> buckets;
    std::unique_ptr<std::uint32_t[]> entries;
    std::uint32_t bucketCount;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed;
};

}  // namespace lexon::detail
