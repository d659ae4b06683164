#include "wordlex/catalog/Store.h"

#include <bit>

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

std::uint32_t Field(const std::byte* record, std::size_t offset) noexcept {
    std::uint32_t value;
    std::memcpy(&value, record + offset, sizeof value);
    return value;
}

}  // namespace

std::uint64_t Index::Hash(std::string_view key, std::uint64_t seed) noexcept {
    return XXH3_64bits_withSeed(key.data(), key.size(), seed);
}

const std::byte* CatalogStore::FindRecord(std::string_view written) const noexcept {
    const WrittenKey parsed(written);
    const std::string_view key = parsed.key;
    if (!parsed.valid || index.bucketCount == 0) return nullptr;
    const std::uint64_t hash = Index::Hash(key, index.seed);
    const Index::Digest digest = Index::DigestOf(hash);
    std::uint32_t bucket = Index::Home(hash, index.bucketCount);
    for (std::uint32_t probe = 0; probe <= index.longestProbe; ++probe) {
        const std::size_t first = std::size_t{bucket} * Index::kBucketKeys;
        const std::byte* const digests = index.digests.data() + first * sizeof digest;
        for (auto left = Index::Matches(digests, digest); left != 0; left &= left - 1) {
            const auto position = first + static_cast<std::size_t>(std::countr_zero(left));
            const std::byte* const record = index.records.data() + position * sizeof(IndexRecord);
            const auto held = Part(keys.area, Field(record, offsetof(IndexRecord, keyOffset)),
                                   Field(record, offsetof(IndexRecord, keyLength)));
            if (held.has_value() && Characters(*held) == key) return record;
        }
        if (Index::Matches(digests, 0) != 0) return nullptr;
        if (++bucket == index.bucketCount) bucket = 0;
    }
    return nullptr;
}

std::optional<std::u16string_view> CatalogStore::Find(std::string_view written) const noexcept {
    const std::byte* const record = FindRecord(written);
    if (record == nullptr) return std::nullopt;
    return Units(Part(texts.area, Field(record, offsetof(IndexRecord, textOffset)),
                      Field(record, offsetof(IndexRecord, textLength))));
}

std::optional<std::uint32_t> CatalogStore::IdOf(std::string_view written) const noexcept {
    const std::byte* const record = FindRecord(written);
    if (record == nullptr) return std::nullopt;
    return Field(record, offsetof(IndexRecord, entry));
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
