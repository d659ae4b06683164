#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

#include "wordlex/catalog/Bytes.h"
#include "wordlex/catalog/Index.h"
#include "wordlex/catalog/Strings.h"

namespace lexon::detail {

// The hash index of a version 2 image as it lies in the file: for each slot the entries whose keys
// belong there. Nothing in it lies outside of what it is about.
struct SlotLists {
    Bytes slots;  // of each list, 16 bits
    Bytes sizes;  // of each list, 32 bits
    Bytes ids;    // of all lists, one list after another, 32 bits

    // The first entry with the key in the lists of the key's slot, which are those that the engine
    // searches. Reads all of `sizes` in the worst case.
    std::optional<std::uint32_t> Find(std::string_view key, const Strings& keys) const noexcept;
    // An index that finds the same. `keys` and `texts` describe `entryCount` entries each.
    MadeIndex MakeIndex(std::uint32_t entryCount, const Strings& keys, const Strings& texts,
                        std::uint64_t seed) const;
};

}  // namespace lexon::detail
