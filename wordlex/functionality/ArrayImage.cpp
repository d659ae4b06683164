#include "wordlex/functionality/ArrayImage.h"

#include <algorithm>
#include <limits>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/KeyHash.h"

namespace lexon_private {

ArrayImage::ArrayImage(ImageReader& reader, std::uint32_t storeTotal) {
    idBase = reader.Get<std::uint32_t>();
    if (idBase != 0 && storeTotal != 0 && idBase != storeTotal) {
        reader.Reject(ImageFault::kIdBaseConflict, reader.Offset() - sizeof idBase);
    }
    array.keyed = reader.Get<std::uint8_t>() != kNotKeyed;
    array.entryCount = reader.Get<std::uint32_t>();
    const auto declaredLiveCount = reader.Get<std::uint32_t>();
    const auto slotCount = reader.Get<std::uint32_t>();
    const std::uint32_t keySize = array.keyed ? reader.Get<std::uint32_t>() : 0;
    const auto valueSize = reader.Get<std::uint32_t>();

    const std::uint64_t tablesAt = reader.Offset();
    if (array.keyed) {
        array.keys.ReadTables(reader, array.entryCount, keySize, ImageFault::kKeyOutside);
    }
    array.values.ReadTables(reader, array.entryCount, valueSize, ImageFault::kValueOutside);
    if (array.entryCount > std::numeric_limits<std::uint32_t>::max() - storeTotal) {
        reader.Reject(ImageFault::kTooManyEntries, tablesAt);
    }
    if (array.keyed) array.keys.ReadArea(reader, keySize);
    array.values.ReadArea(reader, valueSize);
    if (array.keyed) ReadHashIndex(reader, slotCount);
    ReadAccelerators(reader);
    if (!reader.Ok()) return;
    const std::uint32_t alive = array.keyed ? HashKeys() : 0;
    // The count is at least that of the certainly living entries and at most that of all, so that
    // it cannot wrap when entries are removed. In between the image's count applies: an empty key
    // with an empty value counts too. With a count of 0, nothing is loaded.
    if (declaredLiveCount != 0) liveCount = std::clamp(declaredLiveCount, alive, array.entryCount);
}

void ArrayImage::ReadHashIndex(ImageReader& reader, std::uint32_t slotCount) {
    const std::uint64_t numbersAt = reader.Offset();
    array.slotNumbers = reader.GetTable<std::uint16_t>(slotCount);
    const auto badSlot = std::find_if(array.slotNumbers.begin(), array.slotNumbers.end(),
                                      [](std::uint16_t slot) { return slot >= kHashBucketCount; });
    if (badSlot != array.slotNumbers.end()) {
        const auto position = static_cast<std::uint64_t>(badSlot - array.slotNumbers.begin());
        reader.Reject(ImageFault::kSlotOutside, numbersAt + position * sizeof *badSlot);
    }
    array.slotSizes = reader.GetTable<std::uint32_t>(slotCount);
    std::uint64_t idCount = 0;
    for (const std::uint32_t size : array.slotSizes)
        idCount += size;

    const std::uint64_t idsAt = reader.Offset();
    array.ids = reader.GetTable<std::uint32_t>(idCount);
    CheckIds(reader, array.ids, idsAt);
}

void ArrayImage::CheckIds(ImageReader& reader, const Table<std::uint32_t>& entries,
                          std::uint64_t tableAt) const {
    const auto bad = std::find_if(entries.begin(), entries.end(),
                                  [this](std::uint32_t id) { return id >= array.entryCount; });
    if (bad == entries.end()) return;
    const auto position = static_cast<std::uint64_t>(bad - entries.begin());
    reader.Reject(ImageFault::kIdOutside, tableAt + position * sizeof *bad);
}

void ArrayImage::ReadAccelerators(ImageReader& reader) {
    array.acceleratorCount = reader.Get<std::uint32_t>();
    if (array.acceleratorCount == 0) return;
    const auto areaSize = reader.Get<std::uint32_t>();
    const std::uint64_t entriesAt = reader.Offset();
    array.acceleratorEntries = reader.GetTable<std::uint32_t>(array.acceleratorCount);
    CheckIds(reader, array.acceleratorEntries, entriesAt);
    array.accelerators.ReadTables(reader, array.acceleratorCount, areaSize,
                                  ImageFault::kAcceleratorOutside);
    array.accelerators.ReadArea(reader, areaSize);
}

// In the order of the entries, which is that of the key area: the lists would jump about in it.
// An entry without key and value was removed. One with only a value has the empty key.
std::uint32_t ArrayImage::HashKeys() {
    hashedKeys = Table<HashedKey>(array.entryCount);
    std::uint32_t alive = 0;
    for (std::uint32_t i = 0; i < array.entryCount; ++i) {
        const unsigned char* const key = array.keys.Data(i);
        const std::uint16_t length = array.keys.Length(i);
        const bool removed = length == 0 && array.values.Length(i) == 0;
        hashedKeys[i] = {KeyHash(key, length),
                         removed ? kNoSlot : static_cast<std::uint16_t>(HashFunc(key, length))};
        if (!removed) ++alive;
    }
    return alive;
}

}  // namespace lexon_private
