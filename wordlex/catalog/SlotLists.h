#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

#include "wordlex/catalog/Bytes.h"
#include "wordlex/catalog/Index.h"
#include "wordlex/catalog/Strings.h"

namespace lexon::detail {

// The hash index in a version 2 image: for each slot the entries whose keys belong there. All its
// values are inside the tables that they refer to.
struct SlotLists {
    Bytes slots;  // of each list, 16 bits
    Bytes sizes;  // of each list, 32 bits
    Bytes ids;    // of all lists, one list after another, 32 bits

    // The first entry with the key in the lists of the key's slot, which the engine searches too.
    // Reads all of `sizes` in the worst case.
    std::optional<std::uint32_t> Find(std::string_view key, const Strings& keys) const noexcept;
    // An index that finds the same entries. `keys` and `texts` describe `entryCount` entries each.
    MadeIndex MakeIndex(std::uint32_t entryCount, const Strings& keys, const Strings& texts,
                        std::uint64_t seed) const;
};

}  // namespace lexon::detail
