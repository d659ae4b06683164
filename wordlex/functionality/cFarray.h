#pragma once
#include <cstddef>
#include <cstdint>

#include "wordlex/functionality/PackedRuns.h"
#include "wordlex/functionality/Table.h"

namespace lexon_private {

// One array of entries of a compact store: a loaded image, or up to 100 added entries. An entry of
// a keyed array without key bytes was removed or overridden, or has the empty key.
struct cFarray {
    std::uint32_t entryCount = 0;
    bool keyed = true;
    PackedRuns<unsigned char> keys;  // of keyed arrays
    PackedRuns<unsigned short> values;
    // The accelerator strings of some entries, in the order of the entries.
    std::uint32_t acceleratorCount = 0;
    // The entry index of each string, ascending. In an image where they do not ascend, some
    // accelerators are neither found nor emptied with their entries.
    Table<std::uint32_t> acceleratorEntries;
    PackedRuns<unsigned short> accelerators;
    // The hash slots in which the entries of a keyed array are listed, including removed ones: for
    // an image its slots, the number of ids of each, and the ids one list after another; for added
    // entries the slot of each.
    Table<std::uint16_t> slotNumbers;
    Table<std::uint32_t> slotSizes;
    Table<std::uint32_t> ids;

    // Makes it an empty array with room for that many added entries.
    void MakeEmpty(std::uint32_t room);
    // Calls visit(slot, entry) for every listed entry in order.
    template <class Visit>
    void ForEachListed(Visit visit) const {
        if (slotSizes.empty()) {
            for (std::uint32_t i = 0; i < entryCount && i < slotNumbers.size(); ++i)
                visit(slotNumbers[i], i);
        }
        const std::uint32_t* id = ids.begin();
        for (std::size_t s = 0; s < slotSizes.size(); ++s) {
            for (std::uint32_t i = 0; i < slotSizes[s]; ++i)
                visit(slotNumbers[s], *id++);
        }
    }
    // The same for an image; removes the ids for which it returns false from their lists.
    template <class Keep>
    void FilterListed(Keep keep) {
        const std::uint32_t* id = ids.begin();
        std::uint32_t* kept = ids.begin();
        for (std::size_t s = 0; s < slotSizes.size(); ++s) {
            std::uint32_t keptHere = 0;
            for (std::uint32_t i = 0; i < slotSizes[s]; ++i, ++id) {
                if (!keep(slotNumbers[s], *id)) continue;
                *kept++ = *id;
                ++keptHere;
            }
            slotSizes[s] = keptHere;
        }
    }

    // Index of the accelerator string of an entry, or acceleratorCount.
    std::uint32_t getAccelIndex(std::uint32_t entry) const noexcept;
    // Makes room for one more accelerator string. Arrays of added entries have few: `room` is the
    // first amount.
    void PrepareAccelerators(std::uint32_t room);
    void AddAccelerator(std::uint32_t entry, PackedRuns<unsigned short>::Run text,
                        std::uint16_t byteCount) noexcept;
    // Empties key, value and accelerator string of an entry of a keyed array.
    void Kill(std::uint32_t entry) noexcept;
};

}  // namespace lexon_private
