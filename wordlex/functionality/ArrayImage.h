#pragma once
#include <cstdint>

#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/Table.h"
#include "wordlex/functionality/cFarray.h"

namespace lexon_private {

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
    // Of keyed images, for each entry: the hash of its key, and the slot in which that belongs or
    // kNoSlot for an entry that was removed.
    Table<std::uint32_t> keyHashes;
    Table<std::uint16_t> keySlots;
    static constexpr std::uint16_t kNoSlot = 0xFFFF;

private:
    void ReadHashIndex(ImageReader& reader, std::uint32_t slotCount);
    void ReadAccelerators(ImageReader& reader);
    // Rejects a table that names an entry behind the last one.
    void CheckIds(ImageReader& reader, const Table<std::uint32_t>& entries,
                  std::uint64_t tableAt) const;
    void HashKeys();
    std::uint32_t BelievableLiveCount(std::uint32_t declared) const noexcept;
};

}  // namespace lexon_private
