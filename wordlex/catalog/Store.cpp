#include "wordlex/catalog/Store.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace lexon::detail {

namespace {

std::string_view Characters(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Half a unit at the end is dropped. Units at odd addresses are none: loaders put texts where they
// can be handed out.
std::optional<std::u16string_view> Units(std::optional<Bytes> bytes) noexcept {
    if (!bytes.has_value()) return std::nullopt;
    const std::size_t count = bytes->size() / sizeof(char16_t);
    if (count == 0) return std::u16string_view();
    if (reinterpret_cast<std::uintptr_t>(bytes->data()) % alignof(char16_t) != 0)
        return std::nullopt;
    return std::u16string_view(reinterpret_cast<const char16_t*>(bytes->data()), count);
}

}  // namespace

std::uint64_t Index::Hash(std::string_view key, std::uint64_t seed) noexcept {
    return XXH3_64bits_withSeed(key.data(), key.size(), seed);
}

WrittenKey::WrittenKey(std::string_view text) noexcept {
    constexpr std::string_view kPrefix = "$$$";
    if (text.starts_with("($$$")) {
        text.remove_prefix(1);
        if (text.ends_with(')')) text.remove_suffix(1);
    }
    if (text.empty()) return;
    if (text.front() == '$') {
        if (!text.starts_with(kPrefix)) return;
        text.remove_prefix(kPrefix.size());
    }
    valid = true;
    key = text.substr(0, text.find('='));
    if (key.size() != text.size()) defaultText = text.substr(key.size() + 1);
}

std::optional<Slot> CatalogStore::FindSlot(std::string_view key) const noexcept {
    if (index.slotCount == 0) return std::nullopt;
    const std::uint64_t hash = Index::Hash(key, index.seed);
    std::uint32_t at = Index::Home(hash, index.slotCount);
    for (std::uint32_t probe = 0; probe <= index.longestProbe; ++probe) {
        const auto slot = LoadAt<Slot>(index.slots, std::size_t{at} * sizeof(Slot));
        if (slot.entry == 0) return std::nullopt;
        if (slot.digest == static_cast<std::uint32_t>(hash) && slot.keyLength == key.size()) {
            const auto held = Part(keys.area, slot.keyOffset, slot.keyLength);
            if (held.has_value() && Characters(*held) == key) return slot;
        }
        if (++at == index.slotCount) at = 0;
    }
    return std::nullopt;
}

std::optional<std::u16string_view> CatalogStore::Find(std::string_view key) const noexcept {
    const auto slot = FindSlot(key);
    if (!slot.has_value()) return std::nullopt;
    return Units(Part(texts.area, slot->textOffset, slot->textLength));
}

std::optional<std::uint32_t> CatalogStore::IdOf(std::string_view key) const noexcept {
    const auto slot = FindSlot(key);
    if (!slot.has_value()) return std::nullopt;
    return slot->entry - 1;
}

bool CatalogStore::Has(std::uint32_t id) const noexcept {
    // In a version 2 file a keyed entry without a key was removed; the others have no such entries.
    const bool mayHaveEmptyKey = keys.lengthSize != sizeof(std::uint16_t);
    return id < entryCount && (!keyed || mayHaveEmptyKey || keys.Length(id) != 0);
}

std::optional<std::string_view> CatalogStore::KeyOf(std::uint32_t id) const noexcept {
    if (!Has(id) || !keyed) return std::nullopt;
    const auto key = keys.At(id);
    if (!key.has_value()) return std::nullopt;
    return Characters(*key);
}

std::optional<std::u16string_view> CatalogStore::TextOf(std::uint32_t id) const noexcept {
    if (!Has(id)) return std::nullopt;
    return Units(texts.At(id));
}

std::optional<std::u16string_view> CatalogStore::AcceleratorOf(std::uint32_t id) const noexcept {
    if (!Has(id)) return std::nullopt;
    // Bisected by hand: files may hold entries that do not ascend, of which some are not found.
    const auto entryAt = [this](std::uint32_t i) {
        return LoadAt<std::uint32_t>(acceleratorEntries, std::size_t{i} * sizeof(std::uint32_t));
    };
    std::uint32_t low = 0;
    for (std::uint32_t high = acceleratorCount; low < high;) {
        const std::uint32_t middle = low + (high - low) / 2;
        if (entryAt(middle) < id) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    if (low == acceleratorCount || entryAt(low) != id) return std::nullopt;
    const auto text = Units(accelerators.At(low));
    return text.has_value() && text->empty() ? std::nullopt : text;
}

}  // namespace lexon::detail
