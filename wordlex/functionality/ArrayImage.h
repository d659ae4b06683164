#pragma once
#include <cstdint>

#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/Table.h"
#include "wordlex/functionality/cFarray.h"

namespace lexon_private {

// A version 2 image, read and checked, not yet part of a store.
// Invariant: once read without fault, every offset, length, slot and id is inside its area or
// table,
//            so the store need not check again.
struct ArrayImage {
    // Reads the image for a store of `storeTotal` entries. Useless when the reader is not Ok()
    // afterwards.
    ArrayImage(ImageReader& reader, std::uint32_t storeTotal);

    cFarray array;
    std::uint32_t idBase = 0;  // from the image
    std::uint32_t liveCount = 0;
    static constexpr std::uint16_t kNoSlot = 0xFFFF;
    struct HashedKey {
        std::uint32_t hash;
        std::uint16_t slot;  // of the key; kNoSlot for an entry that was removed
    };
    Table<HashedKey> hashedKeys;  // of keyed images: one for each entry

private:
    void ReadHashIndex(ImageReader& reader, std::uint32_t slotCount);
    void ReadAccelerators(ImageReader& reader);
    // Rejects a table that names an entry after the last one.
    void CheckIds(ImageReader& reader, const Table<std::uint32_t>& entries,
                  std::uint64_t tableAt) const;
    // Returns the number of entries that were not removed.
    std::uint32_t HashKeys();
};

}  // namespace lexon_private
