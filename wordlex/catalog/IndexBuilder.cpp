#include "wordlex/catalog/IndexBuilder.h"

#include <random>
#include <span>
#include <utility>

namespace lexon::detail {

IndexBuilder::IndexBuilder(std::uint32_t most, std::uint64_t hashSeed)
    : bucketCount(static_cast<std::uint32_t>(std::uint64_t{most} * 7 / 16) + 1), seed(hashSeed) {
    buckets = std::make_unique<Bucket[]>(bucketCount);  // zeros, on disk too
    entries = std::make_unique<std::uint32_t[]>(std::size_t{bucketCount} * Bucket::kPlaces);
}

MadeIndex IndexBuilder::Finish() && {
    struct Memory {
        std::unique_ptr<Bucket[]> buckets;
        std::unique_ptr<std::uint32_t[]> entries;
    };
    const std::size_t places = std::size_t{bucketCount} * Bucket::kPlaces;
    const Index index = {std::as_bytes(std::span(buckets.get(), bucketCount)),
                         std::as_bytes(std::span(entries.get(), places)), bucketCount, longestProbe,
                         seed};
    return {index, std::make_shared<const Memory>(Memory{std::move(buckets), std::move(entries)})};
}

std::uint64_t IndexBuilder::RandomSeed() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return std::uint64_t{device()} << 32 | device();
    }();
    return seed;
}

}  // namespace lexon::detail
