#include "wordlex/catalog/SlotLists.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>

#include "wordlex/catalog/IndexBuilder.h"
#include "wordlex/functionality/BinUtil.h"

namespace lexon::detail {

namespace {

std::uint16_t SlotOf(std::string_view key) noexcept {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(key.data());
    return static_cast<std::uint16_t>(lexon_private::HashFunc(bytes, key.size()));
}

// Fills an index with the entries that a search in the lists finds.
class Filler {
public:
    Filler(const SlotLists& slotLists, std::uint32_t entries, const Strings& keyStrings,
           const Strings& textStrings, std::uint64_t seed)
        : lists(slotLists),
          entryCount(entries),
          keys(keyStrings),
          texts(textStrings),
          builder(entries, seed) {}

    // In the order of the entries, which is that of the key area; the lists would jump about in it.
    // False when that order does not decide which of several entries the lists find.
    bool AddInOrderOfEntries() {
        const auto slotOf = SlotsOfEntries();
        std::size_t listed = 0;
        for (std::uint32_t id = 0; id < entryCount; ++id) {
            if (slotOf[id] == kNotListed) continue;
            ++listed;
            Add(slotOf[id], id);
        }
        Flush();
        return !repeated && listed == Count<std::uint32_t>(lists.ids);
    }

    void AddInOrderOfLists() {
        std::size_t next = 0;
        for (std::size_t list = 0; list < Count<std::uint32_t>(lists.sizes); ++list) {
            const auto slot = ItemAt<std::uint16_t>(lists.slots, list);
            for (auto left = ItemAt<std::uint32_t>(lists.sizes, list); left != 0; --left)
                Add(slot, ItemAt<std::uint32_t>(lists.ids, next++));
        }
        Flush();
    }

    MadeIndex Finish() && { return std::move(builder).Finish(); }

private:
    static constexpr std::uint16_t kNotListed = 0xFFFF;
    static constexpr std::size_t kBatch = 32;  // keys whose buckets are fetched at once

    struct Pending {
        std::uint32_t id;
        std::uint64_t hash;
    };

    // The slot that lists each entry; the last one if there are several.
    std::unique_ptr<std::uint16_t[]> SlotsOfEntries() const {
        auto slotOf = std::make_unique_for_overwrite<std::uint16_t[]>(entryCount);
        std::fill_n(slotOf.get(), entryCount, kNotListed);
        std::size_t next = 0;
        for (std::size_t list = 0; list < Count<std::uint32_t>(lists.sizes); ++list) {
            const auto slot = ItemAt<std::uint16_t>(lists.slots, list);
            for (auto left = ItemAt<std::uint32_t>(lists.sizes, list); left != 0; --left)
                slotOf[ItemAt<std::uint32_t>(lists.ids, next++)] = slot;
        }
        return slotOf;
    }

    void Add(std::uint16_t slot, std::uint32_t id) noexcept {
        const std::string_view key = KeyOf(id);
        if (key.empty()) return;  // it was removed
        if (SlotOf(key) != slot) return;
        pending[pendingCount++] = {id, builder.Prepare(key)};
        if (pendingCount == kBatch) Flush();
    }

    void Flush() noexcept {
        for (const auto& [id, hash] : std::span(pending).first(pendingCount)) {
            const auto [place, isNew] = builder.Claim(
                KeyOf(id), hash, [this](std::uint32_t other) { return KeyOf(other); });
            if (isNew) {
                builder.Set(place, id, {keys.Offset(id), keys.Length(id)},
                            {texts.Offset(id), texts.Length(id)});
            } else {
                repeated = true;
            }
        }
        pendingCount = 0;
    }

    std::string_view KeyOf(std::uint32_t id) const noexcept { return Characters(keys.Inside(id)); }

    const SlotLists& lists;
    std::uint32_t entryCount;
    const Strings& keys;
    const Strings& texts;
    IndexBuilder builder;
    bool repeated = false;  // two entries have the same key
    std::array<Pending, kBatch> pending{};
    std::size_t pendingCount = 0;
};

}  // namespace

std::optional<std::uint32_t> SlotLists::Find(std::string_view key,
                                             const Strings& keys) const noexcept {
    if (key.empty()) return std::nullopt;  // the key of removed entries
    const std::uint16_t slot = SlotOf(key);
    std::size_t next = 0;
    for (std::size_t list = 0; list < Count<std::uint32_t>(sizes); ++list) {
        const auto size = ItemAt<std::uint32_t>(sizes, list);
        if (ItemAt<std::uint16_t>(slots, list) == slot) {
            for (std::size_t i = next; i < next + size; ++i) {
                const auto id = ItemAt<std::uint32_t>(ids, i);
                if (keys.Length(id) == key.size() && Characters(keys.Inside(id)) == key) return id;
            }
        }
        next += size;
    }
    return std::nullopt;
}

MadeIndex SlotLists::MakeIndex(std::uint32_t entryCount, const Strings& keys, const Strings& texts,
                               std::uint64_t seed) const {
    Filler usual(*this, entryCount, keys, texts, seed);
    if (usual.AddInOrderOfEntries()) return std::move(usual).Finish();
    Filler odd(*this, entryCount, keys, texts, seed);
    odd.AddInOrderOfLists();
    return std::move(odd).Finish();
}

}  // namespace lexon::detail
