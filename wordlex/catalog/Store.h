#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "wordlex/catalog/Catalog.h"

namespace lexon::detail {

using Bytes = std::span<const std::byte>;

// A number in host order from any address.
template <class T>
T LoadAt(Bytes bytes, std::size_t at) noexcept {
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

// The `length` bytes at `offset`, where they lie inside.
inline std::optional<Bytes> Part(Bytes bytes, std::uint64_t offset, std::uint64_t length) noexcept {
    if (offset > bytes.size() || length > bytes.size() - offset) return std::nullopt;
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

// Numbered strings: a table of offsets of 32 bits, one of lengths in bytes, and the area that both
// describe. Nothing in the tables is trusted.
struct Strings {
    Bytes offsets;
    Bytes lengths;
    std::size_t lengthSize = sizeof(std::uint16_t);  // of a number in `lengths`: 2 or 4
    Bytes area;

    std::uint32_t Length(std::uint32_t i) const noexcept {
        return lengthSize == sizeof(std::uint16_t)
                   ? LoadAt<std::uint16_t>(lengths, std::size_t{i} * sizeof(std::uint16_t))
                   : LoadAt<std::uint32_t>(lengths, std::size_t{i} * sizeof(std::uint32_t));
    }
    std::uint32_t Offset(std::uint32_t i) const noexcept {
        return LoadAt<std::uint32_t>(offsets, std::size_t{i} * sizeof(std::uint32_t));
    }
    // `i` is below the number of strings.
    std::optional<Bytes> At(std::uint32_t i) const noexcept {
        return Part(area, Offset(i), Length(i));
    }
};

// What one slot of the index holds: all that a look-up by key needs. On disk in the index of a
// file, field by field in the file's byte order: never change.
struct Slot {
    std::uint32_t digest;     // low half of the key's hash
    std::uint32_t entry;      // id and one; 0: an empty slot
    std::uint32_t keyOffset;  // in the key area; offsets and lengths are bytes
    std::uint32_t keyLength;
    std::uint32_t textOffset;  // in the text area
    std::uint32_t textLength;
};
static_assert(sizeof(Slot) == 24);

// A closed table of slots. A key's slots begin at Home(hash) and go on, round the end, to the first
// empty one; no key lies more than `longestProbe` slots from its home.
struct Index {
    Bytes slots;
    std::uint32_t slotCount = 0;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed = 0;

    static std::uint64_t Hash(std::string_view key, std::uint64_t seed) noexcept;
    static std::uint32_t Home(std::uint64_t hash, std::uint32_t slotCount) noexcept {
        return static_cast<std::uint32_t>(((hash >> 32) * slotCount) >> 32);
    }
};

// A key as a caller writes it, taken apart.
struct WrittenKey {
    std::string_view key;
    std::string_view defaultText;  // empty, too, when there is none
    bool valid = false;

    explicit WrittenKey(std::string_view text) noexcept;
};

// The content of a catalog. Whatever made it, each access is checked where it is made: a damaged
// file can make an answer wrong, but not reach outside of its bytes.
// Threads: never changes once it is made.
class CatalogStore {
public:
    std::optional<std::u16string_view> Find(std::string_view key) const noexcept;
    std::optional<std::uint32_t> IdOf(std::string_view key) const noexcept;
    bool Has(std::uint32_t id) const noexcept;
    std::optional<std::string_view> KeyOf(std::uint32_t id) const noexcept;
    std::optional<std::u16string_view> TextOf(std::uint32_t id) const noexcept;
    std::optional<std::u16string_view> AcceleratorOf(std::uint32_t id) const noexcept;

    // Filled by the loaders.
    Index index;
    std::uint32_t entryCount = 0;
    bool keyed = true;
    Strings keys;
    Strings texts;
    Bytes acceleratorEntries;  // the entry of each accelerator string
    std::uint32_t acceleratorCount = 0;
    Strings accelerators;
    std::string locale;
    std::vector<LoadWarning> warnings;
    std::vector<std::shared_ptr<const void>> keepers;  // of all that the spans refer to

private:
    std::optional<Slot> FindSlot(std::string_view key) const noexcept;
};

}  // namespace lexon::detail
