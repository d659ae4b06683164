#pragma once
#include <memory>

#include "wordlex/catalog/Store.h"

namespace lexon::detail {

// Fills an index of up to `most` keys, two of three slots at the most.
class IndexBuilder {
public:
    IndexBuilder(std::uint32_t most, std::uint64_t seed);

    // The slot of the key: one with entry 0, digest and key length set, when the key is new. The
    // caller fills it and its key's place in the area.
    Slot& Claim(std::string_view key, Bytes keyArea) noexcept;

    // Gives the index to a store, which keeps it from then on.
    void MoveInto(CatalogStore& store) &&;

    // Other in each process, so that nobody can make keys ahead that collide.
    static std::uint64_t RandomSeed();

private:
    std::unique_ptr<Slot[]> slots;
    std::uint32_t slotCount;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed;
};

}  // namespace lexon::detail
