#include "wordlex/catalog/IndexBuilder.h"

#include <limits>
#include <random>

#include "wordlex/catalog/Loaders.h"

namespace lexon::detail {

namespace {

std::uint32_t SlotCount(std::uint32_t most) {
    const std::uint64_t count = std::uint64_t{most} + most / 2 + 1;
    if (count <= std::numeric_limits<std::uint32_t>::max())
        return static_cast<std::uint32_t>(count);
    throw LoadFault{
        {.code = LoadError::Code::kMalformed, .reason = "more entries than an index has room for"}};
}

}  // namespace

IndexBuilder::IndexBuilder(std::uint32_t most, std::uint64_t hashSeed)
    : slotCount(SlotCount(most)), seed(hashSeed) {
    slots = std::make_unique<Slot[]>(slotCount);
}

Slot& IndexBuilder::Claim(std::string_view key, Bytes keyArea) noexcept {
    const std::uint64_t hash = Index::Hash(key, seed);
    const auto digest = static_cast<std::uint32_t>(hash);
    std::uint32_t at = Index::Home(hash, slotCount);
    for (std::uint32_t probe = 0;; ++probe) {
        Slot& slot = slots[at];
        if (slot.entry == 0) {
            slot.digest = digest;
            slot.keyLength = static_cast<std::uint32_t>(key.size());
            if (probe > longestProbe) longestProbe = probe;
            return slot;
        }
        if (slot.digest == digest && slot.keyLength == key.size() &&
            std::string_view(reinterpret_cast<const char*>(keyArea.data()) + slot.keyOffset,
                             slot.keyLength) == key)
            return slot;
        if (++at == slotCount) at = 0;
    }
}

void IndexBuilder::MoveInto(CatalogStore& store) && {
    store.index.slots = {reinterpret_cast<const std::byte*>(slots.get()),
                         std::size_t{slotCount} * sizeof(Slot)};
    store.index.slotCount = slotCount;
    store.index.longestProbe = longestProbe;
    store.index.seed = seed;
    store.keepers.push_back(std::shared_ptr<const Slot[]>(std::move(slots)));
}

std::uint64_t IndexBuilder::RandomSeed() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return std::uint64_t{device()} << 32 | device();
    }();
    return seed;
}

}  // namespace lexon::detail
