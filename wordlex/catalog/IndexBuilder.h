#pragma once
#include <memory>

#include "wordlex/catalog/Store.h"

namespace lexon::detail {

// Fills an index of up to `most` keys, with three places for two keys.
class IndexBuilder {
public:
    IndexBuilder(std::uint32_t most, std::uint64_t seed);

    struct Claimed {
        IndexRecord& record;
        bool isNew;  // the caller fills the record
    };
    Claimed Claim(std::string_view key, Bytes keyArea) noexcept;

    // Gives the index to a store, which keeps it from then on.
    void MoveInto(CatalogStore& store) &&;

    // Other in each process, so that nobody can make keys ahead that collide.
    static std::uint64_t RandomSeed();

private:
    std::unique_ptr<Index::Digest[]> digests;
    std::unique_ptr<IndexRecord[]> records;
    std::uint32_t bucketCount;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed;
};

}  // namespace lexon::detail
