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

// What the index holds of a key: all that a look-up needs. Offsets and lengths are bytes. On disk
// in the index of a file, field by field in the file's byte order: never change.
struct IndexRecord {
    std::uint32_t entry;      // its id
    std::uint32_t keyOffset;  // in the key area
    std::uint32_t keyLength;
    std::uint32_t textOffset;  // in the text area
    std::uint32_t textLength;
};
static_assert(sizeof(IndexRecord) == 20);

// A closed hash table of buckets with room for eight keys each. A key lies in the bucket that its
// hash gives, or where that is full in one of the next, round the end: no more than `longestProbe`
// buckets further. Each key has a digest, 0 where there is none, and a record at the same position.
struct Index {
    static constexpr std::uint32_t kBucketKeys = 8;
    using Digest = std::uint32_t;

    Bytes digests;
    Bytes records;
    std::uint32_t bucketCount = 0;
    std::uint32_t longestProbe = 0;
    std::uint64_t seed = 0;

    static std::uint64_t Hash(std::string_view key, std::uint64_t seed) noexcept;
    static std::uint32_t Home(std::uint64_t hash, std::uint32_t bucketCount) noexcept {
        return static_cast<std::uint32_t>(((hash >> 32) * bucketCount) >> 32);
    }
    static Digest DigestOf(std::uint64_t hash) noexcept {
        const auto low = static_cast<Digest>(hash);
        return low != 0 ? low : 1;
    }
    // Which of the eight digests equal this one: a bit for each, the lowest for the first.
    static std::uint32_t Matches(const std::byte* bucket, Digest digest) noexcept {
        typedef Digest Four __attribute__((vector_size(16)));  // compared at once
        Four first;
        Four second;
        std::memcpy(&first, bucket, sizeof first);
        std::memcpy(&second, bucket + sizeof first, sizeof second);
        const auto bits =
            ((first == digest) & Four{1, 2, 4, 8}) | ((second == digest) & Four{16, 32, 64, 128});
        std::uint64_t halves[2];
        std::memcpy(halves, &bits, sizeof halves);
        const std::uint64_t both = halves[0] | halves[1];
        return static_cast<std::uint32_t>(both | both >> 32);
    }
};

// A key as a caller writes it, taken apart.
struct WrittenKey {
    std::string_view key;
    std::string_view defaultText;  // empty, too, when there is none
    bool valid = false;

    explicit WrittenKey(std::string_view text) noexcept {
        constexpr std::string_view kPrefix = "$$$";
        if (text.empty()) return;
        if (text.front() == '(' && text.substr(1).starts_with(kPrefix)) {
            text.remove_prefix(1);
            if (text.back() == ')') text.remove_suffix(1);
        }
        if (text.front() == '$') {
            if (!text.starts_with(kPrefix)) return;
            text.remove_prefix(kPrefix.size());
        }
        valid = true;
        key = text.substr(0, text.find('='));
        if (key.size() != text.size()) defaultText = text.substr(key.size() + 1);
    }
};

// The content of a catalog. Whatever made it, each access is checked where it is made: a damaged
// file can make an answer wrong, but not reach outside of its bytes.
// Threads: never changes once it is made.
class CatalogStore {
public:
    // The key as a caller writes it.
    std::optional<std::u16string_view> Find(std::string_view written) const noexcept;
    std::optional<std::uint32_t> IdOf(std::string_view written) const noexcept;
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
    // The bytes of the key's record, or null.
    const std::byte* FindRecord(std::string_view written) const noexcept;
};

}  // namespace lexon::detail
