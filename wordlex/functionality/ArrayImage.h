#pragma once
#include <cstdint>

#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/PackedRuns.h"
#include "wordlex/functionality/Table.h"

namespace lexon_private {

// One array of entries of a compact store: an image that was loaded, or up to 100 added entries.
// An entry of a keyed array without key bytes was removed or overridden, or has the empty key.
struct cFarray {
    std::uint32_t entryCount = 0;
    bool keyed = true;
    PackedRuns<unsigned char> keys;  // of keyed arrays
    PackedRuns<unsigned short> values;
    // The accelerator strings of some entries, in the order of these.
    std::uint32_t acceleratorCount = 0;
    // Index of each one's entry, ascending. Of an image where they do not ascend, some accelerators
    // are not found, nor emptied with their entries.
    Table<std::uint32_t> acceleratorEntries;
    PackedRuns<unsigned short> accelerators;

    // Index of the accelerator string of an entry, or acceleratorCount.
    std::uint32_t getAccelIndex(std::uint32_t entry) const noexcept;
    // Makes room for one more accelerator string. Arrays of added entries have few: `room` is that
    // of the first time.
    void PrepareAccelerators(std::uint32_t room);
    void AddAccelerator(std::uint32_t entry, PackedRuns<unsigned short>::Run text,
                        std::uint16_t byteCount) noexcept;
    // Empties key, value and accelerator string of an entry of a keyed array.
    void Kill(std::uint32_t entry) noexcept;
};

// A version 2 image as read and checked, not yet part of a store.
// Invariant: once read without fault, every offset, length, slot and id lies inside what it is
//            about, so the store need not check again.
struct ArrayImage {
    // Reads the image for a store of `storeTotal` entries. Of no use when the reader is not Ok()
    // afterwards.
    ArrayImage(ImageReader& reader, std::uint32_t storeTotal);

    cFarray array;
    std::uint32_t idBase = 0;  // as the image declares it
    std::uint32_t liveCount = 0;
    Table<std::uint16_t> tags;  // of each entry's key, as IdList has them
    // The hash index: its slots, the number of ids of each, and the ids one list after another.
    Table<std::uint16_t> slotNumbers;
    Table<std::uint32_t> slotSizes;
    Table<std::uint32_t> ids;

    // Calls visit(slot, entry) for every listed id in order.
    template <class Visit>
    void ForEachListed(Visit visit) const {
        const std::uint32_t* id = ids.begin();
        for (std::size_t s = 0; s < slotNumbers.size(); ++s) {
            for (std::uint32_t i = 0; i < slotSizes[s]; ++i)
                visit(slotNumbers[s], *id++);
        }
    }
    // The same, and takes the ids off their lists for which it gives false.
    template <class Keep>
    void FilterListed(Keep keep) {
        const std::uint32_t* id = ids.begin();
        std::uint32_t* kept = ids.begin();
        for (std::size_t s = 0; s < slotNumbers.size(); ++s) {
            std::uint32_t keptHere = 0;
            for (std::uint32_t i = 0; i < slotSizes[s]; ++i, ++id) {
                if (!keep(slotNumbers[s], *id)) continue;
                *kept++ = *id;
                ++keptHere;
            }
            slotSizes[s] = keptHere;
        }
    }

private:
    void ReadHashIndex(ImageReader& reader, std::uint32_t slotCount);
    void ReadAccelerators(ImageReader& reader);
    // Rejects a table that names an entry behind the last one.
    void CheckIds(ImageReader& reader, const Table<std::uint32_t>& entries,
                  std::uint64_t tableAt) const;
    void MakeTags();
    std::uint32_t BelievableLiveCount(std::uint32_t declared) const noexcept;
};

}  // namespace lexon_private
