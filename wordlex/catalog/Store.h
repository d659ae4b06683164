#pragma once
#include <atomic>
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
#include "wordlex/catalog/SlotLists.h"
#include "wordlex/catalog/Strings.h"

namespace lexon::detail {

// A key as a caller writes it, split into its parts.
struct WrittenKey {
    std::string_view key;
    std::string_view defaultText;  // also empty when there is none
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

    static constexpr std::string_view kPrefix = "$$$";
};

// The content of a catalog. Each access is checked: a damaged file can make a result wrong, but
// never reach outside its bytes. Look-ups by key use an index. A version 2 file without one gets it
// late, in one of the look-ups; the look-ups before it search the lists of the file. So a catalog
// that is seldom used, as most in a chain are, costs little more than its file.
// Threads: its results never change once it is made. The index is published when it is complete;
// the thread that makes it delays no other one.
class CatalogStore {
    // Fields that each look-up reads are together.
    mutable Index index;                       // finds nothing at first
    mutable std::atomic<bool> indexed = true;  // whether look-ups use `index`, not the lists

public:
    // The number of look-ups before one of them makes the index.
    static constexpr std::uint32_t kLookupsInLists = 64;

    std::optional<std::u16string_view> Find(std::string_view key) const noexcept;
    std::optional<std::uint32_t> IdOf(std::string_view key) const noexcept;
    bool Has(std::uint32_t id) const noexcept;
    std::optional<std::string_view> KeyOf(std::uint32_t id) const noexcept;
    std::optional<std::u16string_view> TextOf(std::uint32_t id) const noexcept;
    std::optional<std::u16string_view> AcceleratorOf(std::uint32_t id) const noexcept;

    // Filled by the loaders.
    std::uint32_t entryCount = 0;
    bool keyed = true;
    Strings keys;
    Strings texts;
    Bytes acceleratorEntries;  // the entry of each accelerator string
    std::uint32_t acceleratorCount = 0;
    Strings accelerators;
    std::string locale;
    std::vector<LoadWarning> warnings;
    std::vector<std::shared_ptr<const void>> keepers;  // of all bytes that the spans refer to

    // Call one of them, for stores with keys. The lists and all strings have been checked.
    void SetIndex(MadeIndex made) noexcept { Publish(std::move(made)); }
    void SetLists(const SlotLists& checked, std::uint64_t indexSeed) noexcept;

private:
    bool IsAt(const Index::Place& place, std::string_view key) const noexcept;
    std::optional<std::u16string_view> TextAt(const Index::Place& place) const noexcept;
    std::uint32_t LengthAt(const Index::Place& place, std::size_t lengths,
                           const Strings& strings) const noexcept;
    [[gnu::noinline]] std::optional<std::u16string_view> FindFurther(
        std::string_view key, std::uint64_t hash) const noexcept;
    [[gnu::cold]] std::optional<std::uint32_t> FindInLists(std::string_view key) const noexcept;
    void Publish(MadeIndex made) const noexcept;

    SlotLists lists;
    std::uint64_t seed = 0;
    mutable std::atomic<std::uint32_t> lookupsInLists = 0;
    mutable std::shared_ptr<const void> indexKeeper;
};

}  // namespace lexon::detail
