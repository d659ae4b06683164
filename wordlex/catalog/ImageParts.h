#pragma once
#include "wordlex/catalog/Store.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/ImageReader.h"

namespace lexon::detail {

// The places of the parts of a version 2 image (docs/binary-format.md). Only the header is copied.
// Nothing in the tables is checked or swapped. Once the reader is Ok() afterwards, all parts are
// inside the file.
struct ImageParts {
    lexon_private::BinaryHeader header;
    std::uint32_t entryCount = 0;
    std::uint32_t liveCount = 0;
    std::uint32_t slotCount = 0;
    bool keyed = true;
    Strings keys;
    Strings texts;

    SlotLists lists;

    std::uint64_t acceleratorsAt = 0;  // in the file: their number
    std::uint32_t acceleratorCount = 0;
    Bytes acceleratorEntries;
    Strings accelerators;

    // In this order, from a reader at the start of the file. The first takes the same time for any
    // file; the last needs only a reader at acceleratorsAt in the file's byte order.
    void ReadHead(lexon_private::ImageReader& reader);
    void ReadSlots(lexon_private::ImageReader& reader);
    void ReadAccelerators(lexon_private::ImageReader& reader);
};

lexon_private::ImageReader ReaderOf(Bytes bytes);
// Throws the fault of a reader that is not Ok().
void ThrowFault(const lexon_private::ImageReader& reader);

}  // namespace lexon::detail
