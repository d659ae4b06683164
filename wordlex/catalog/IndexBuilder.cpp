#include "wordlex/catalog/IndexBuilder.h"

#include <algorithm>
#include <bit>
#include <random>

namespace lexon::detail {

IndexBuilder::IndexBuilder(std::uint32_t most, std::uint64_t hashSeed)
    : bucketCount(
          static_cast<std::uint32_t>((std::uint64_t{most} + most / 2) / Index::kBucketKeys) + 1),
      seed(hashSeed) {
    const std::size_t places = std::size_t{bucketCount} * Index::kBucketKeys;
    digests = std::make_unique<Index::Digest[]>(places);
    records = std::make_unique<IndexRecord[]>(places);  // zeros, on disk too
}

IndexBuilder::Claimed IndexBuilder::Claim(std::string_view key, Bytes keyArea) noexcept {
    const std::uint64_t hash = Index::Hash(key, seed);
    const Index::Digest digest = Index::DigestOf(hash);
    std::uint32_t bucket = Index::Home(hash, bucketCount);
    for (std::uint32_t probe = 0;; ++probe) {
        const std::size_t first = std::size_t{bucket} * Index::kBucketKeys;
        const auto* const bytes = reinterpret_cast<const std::byte*>(digests.get() + first);
        const auto positionOf = [first](std::uint32_t bits) {
            return first + static_cast<std::size_t>(std::countr_zero(bits));
        };
        for (auto left = Index::Matches(bytes, digest); left != 0; left &= left - 1) {
            IndexRecord& record = records[positionOf(left)];
            if (record.keyLength == key.size() &&
                std::memcmp(keyArea.data() + record.keyOffset, key.data(), key.size()) == 0)
                return {record, false};
        }
        if (const auto empty = Index::Matches(bytes, 0)) {
            digests[positionOf(empty)] = digest;
            longestProbe = std::max(longestProbe, probe);
            return {records[positionOf(empty)], true};
        }
        if (++bucket == bucketCount) bucket = 0;
    }
}

void IndexBuilder::MoveInto(CatalogStore& store) && {
    const std::size_t places = std::size_t{bucketCount} * Index::kBucketKeys;
    store.index = {std::as_bytes(std::span(digests.get(), places)),
                   std::as_bytes(std::span(records.get(), places)), bucketCount, longestProbe,
                   seed};
    store.keepers.push_back(std::shared_ptr<const Index::Digest[]>(std::move(digests)));
    store.keepers.push_back(std::shared_ptr<const IndexRecord[]>(std::move(records)));
}

std::uint64_t IndexBuilder::RandomSeed() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return std::uint64_t{device()} << 32 | device();
    }();
    return seed;
}

}  // namespace lexon::detail
