#include "wordlex/catalog/Store.h"

#include <new>
#include <utility>

namespace lexon::detail {

namespace {

// Half a unit at the end is dropped. Units at odd addresses are never valid: loaders move texts to
// even ones.
std::optional<std::u16string_view> Units(std::optional<Bytes> bytes) noexcept {
    if (!bytes.has_value()) return std::nullopt;
    const std::size_t count = bytes->size() / sizeof(char16_t);
    if (count == 0) return std::u16string_view();
    if (reinterpret_cast<std::uintptr_t>(bytes->data()) % alignof(char16_t) != 0)
        return std::nullopt;
    return std::u16string_view(reinterpret_cast<const char16_t*>(bytes->data()), count);
}

}  // namespace

inline std::optional<Bytes> CatalogStore::At(std::size_t place, std::size_t offsets,
                                             std::size_t lengths,
                                             const Strings& strings) const noexcept {
    std::uint32_t length = index.Field<std::uint16_t>(place, lengths);
    if (length == Bucket::kLongLength) {
        const std::uint32_t entry = index.EntryAt(place);
        if (entry >= entryCount) return std::nullopt;
        length = strings.Length(entry);
    }
    return Part(strings.area, index.Field<std::uint32_t>(place, offsets), length);
}

inline std::size_t CatalogStore::PlaceOf(std::string_view key) const noexcept {
    return index.Find(Index::Hash(key, index.seed), [&](std::size_t place) {
        const auto held =
            At(place, offsetof(Bucket, keyOffsets), offsetof(Bucket, keyLengths), keys);
        return held.has_value() && Characters(*held) == key;
    });
}

std::optional<std::u16string_view> CatalogStore::Find(const WrittenKey& written) const noexcept {
    if (!written.valid) return std::nullopt;
    if (!indexed.load(std::memory_order_acquire)) [[unlikely]] {
        const auto entry = FindInLists(written.key);
        return entry.has_value() ? Units(texts.At(*entry)) : std::nullopt;
    }
    const std::size_t place = PlaceOf(written.key);
    if (place == Index::kNowhere) return std::nullopt;
    return Units(At(place, offsetof(Bucket, textOffsets), offsetof(Bucket, textLengths), texts));
}

std::optional<std::uint32_t> CatalogStore::IdOf(const WrittenKey& written) const noexcept {
    if (!written.valid) return std::nullopt;
    if (!indexed.load(std::memory_order_acquire)) return FindInLists(written.key);
    const std::size_t place = PlaceOf(written.key);
    if (place == Index::kNowhere) return std::nullopt;
    return index.EntryAt(place);
}

std::optional<std::uint32_t> CatalogStore::FindInLists(std::string_view key) const noexcept {
    if (lookupsInLists.fetch_add(1, std::memory_order_relaxed) == kLookupsInLists) {
        try {
            Publish(lists.MakeIndex(entryCount, keys, texts, seed));
        } catch (const std::bad_alloc&) {
            return lists.Find(key, keys);  // and so do the look-ups that follow
        }
    }
    return lists.Find(key, keys);
}

void CatalogStore::SetLists(const SlotLists& checked, std::uint64_t indexSeed) noexcept {
    lists = checked;
    seed = indexSeed;
    indexed.store(false, std::memory_order_relaxed);
}

void CatalogStore::Publish(MadeIndex made) const noexcept {
    index = made.index;
    indexKeeper = std::move(made.keeper);
    indexed.store(true, std::memory_order_release);
}

bool CatalogStore::Has(std::uint32_t id) const noexcept {
    // In a version 2 file a keyed entry without a key was removed. Other files have no removed
    // entries.
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
    // Binary search by hand: files may contain entries that do not ascend; some of them are not
    // found.
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
