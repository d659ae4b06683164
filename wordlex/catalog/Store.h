#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wordlex/catalog/Bytes.h"
#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Index.h"
#include "wordlex/catalog/platform/Terminated.h"

namespace lexon::detail {

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

// A key as a caller writes it, taken apart.
struct WrittenKey {
    std::string_view key;
    std::string_view defaultText;  // empty, too, when there is none; not read from a `const char*`
    bool valid = false;

    explicit WrittenKey(std::string_view text) noexcept {
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
    // For a zero-terminated text, without a look at what follows the key.
    explicit WrittenKey(const char* text) noexcept {
        if (*text == '\0') return;
        if (*text == '(') {
            *this = WrittenKey(std::string_view(text));
            return;
        }
        if (*text == '$') {
            if (text[1] != '$' || text[2] != '$') return;
            text += kPrefix.size();
        }
        valid = true;
        key = Before(text, '=');
    }

private:
    static constexpr std::string_view kPrefix = "$$$";
};

// The content of a catalog. Whatever made it, each access is checked where it is made: a damaged
// file can make an answer wrong, but not reach outside of its bytes.
// Threads: never changes once it is made.
class CatalogStore {
public:
    std::optional<std::u16string_view> Find(const WrittenKey& written) const noexcept;
    std::optional<std::uint32_t> IdOf(const WrittenKey& written) const noexcept;
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
    std::size_t PlaceOf(const WrittenKey& written) const noexcept;
    // The string of a place by its fields in the bucket, and by the entry's number where it is
    // long.
    std::optional<Bytes> At(std::size_t place, std::size_t offsets, std::size_t lengths,
                            const Strings& strings) const noexcept;
};

}  // namespace lexon::detail
