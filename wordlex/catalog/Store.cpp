#include "wordlex/catalog/Store.h"

#include <new>
#include <utility>

namespace lexon::detail {

namespace {

// Half a unit at the end is dropped. Units at odd addresses are never valid: loaders move texts to
// even ones.
std::optional<std::u16string_view> Units(Bytes bytes) noexcept {
    const std::size_t count = bytes.size() / sizeof(char16_t);
    if (count == 0) return std::u16string_view();
    if (reinterpret_cast<std::uintptr_t>(bytes.data()) % alignof(char16_t) != 0)
        return std::nullopt;
    return std::u16string_view(reinterpret_cast<const char16_t*>(bytes.data()), count);
}
std::optional<std::u16string_view> Units(std::optional<Bytes> bytes) noexcept {
    return bytes.has_value() ? Units(*bytes) : std::nullopt;
}

}  // namespace

// The length of a string of a place, in bytes.
inline std::uint32_t CatalogStore::LengthAt(const Index::Place& place, std::size_t lengths,
                                            const Strings& strings) const noexcept {
    const std::uint32_t length = place.Field<std::uint16_t>(lengths);
    if (length != Bucket::kLongLength) [[likely]]
        return length;
    const std::uint32_t entry = index.EntryAt(place);
    return entry < entryCount ? strings.Length(entry) : 0;
}

inline bool CatalogStore::IsAt(const Index::Place& place, std::string_view key) const noexcept {
    const std::uint64_t length = LengthAt(place, offsetof(Bucket, keyLengths), keys);
    const std::uint64_t offset = place.Field<std::uint32_t>(offsetof(Bucket, keyOffsets));
    return length == key.size() && offset + length <= keys.area.size() &&
           Characters(keys.area.subspan(offset, length)) == key;
}

inline std::optional<std::u16string_view> CatalogStore::TextAt(
    const Index::Place& place) const noexcept {
    const std::uint64_t length = LengthAt(place, offsetof(Bucket, textLengths), texts);
    const std::uint64_t offset = place.Field<std::uint32_t>(offsetof(Bucket, textOffsets));
    if (offset + length > texts.area.size()) return std::nullopt;
    return Units(texts.area.subspan(offset, length));
}

std::optional<std::u16string_view> CatalogStore::Find(std::string_view key) const noexcept {
    if (!indexed.load(std::memory_order_acquire)) [[unlikely]] {
        const auto entry = FindInLists(key);
        return entry.has_value() ? Units(texts.At(*entry)) : std::nullopt;
    }
    const std::uint64_t hash = Index::Hash(key, index.seed);
    // Most keys are in the first place that is tried. This is faster without the loop.
    const auto likely = index.FirstPlace(hash);
    if (likely.has_value() && IsAt(*likely, key)) [[likely]]
        return TextAt(*likely);
    return FindFurther(key, hash);
}

std::optional<std::u16string_view> CatalogStore::FindFurther(std::string_view key,
                                                             std::uint64_t hash) const noexcept {
    const auto place = index.Find(hash, [&](const Index::Place& at) { return IsAt(at, key); });
    return place.has_value() ? TextAt(*place) : std::nullopt;
}

std::optional<std::uint32_t> CatalogStore::IdOf(std::string_view key) const noexcept {
    if (!indexed.load(std::memory_order_acquire)) return FindInLists(key);
    const auto place = index.Find(Index::Hash(key, index.seed),
                                  [&](const Index::Place& at) { return IsAt(at, key); });
    return place.has_value() ? std::optional(index.EntryAt(*place)) : std::nullopt;
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
