#include <algorithm>

#include "wordlex/functionality/ArrayImage.h"
#include "wordlex/functionality/FastArray.h"

namespace lexon_private {

namespace {

// A key of this length and more is not recognised when an image is merged.
constexpr unsigned long kMergedKeyLimit = 1024;

// The index's hash for an entry that an image lists in a slot: in the slot of its key the hash of
// the key, in each other slot a hash that no search by key uses.
std::uint32_t SlotHash(const ArrayImage& image, std::uint16_t slot, std::uint32_t entry) noexcept {
    constexpr std::uint32_t kOdd = 0x9E3779B1;  // so that every slot makes another hash
    const ArrayImage::HashedKey& key = image.hashedKeys[entry];
    return slot == key.slot ? key.hash : key.hash + kOdd * (slot + 1U);
}

}  // namespace

ImageResult FastArray::Load(ImageReader& reader) {
    ArrayImage image(reader, totalCount);
    if (!reader.Ok()) {
        return IsMalformed(reader.Fault()) ? ImageResult::kMalformed : ImageResult::kRejected;
    }
    if (image.liveCount == 0) return ImageResult::kLoaded;

    std::vector<Update> updates;
    if (totalCount != 0 && image.idBase == 0) updates = TakeHeldKeys(image);
    const bool bringsEntries = image.liveCount != 0;
    KeyIndex<std::uint32_t> larger;
    if (bringsEntries) {
        larger = IndexWith(image);
        ReserveArray();
    }
    // From here on nothing fails.
    for (Update& update : updates) {
        const Place place = PlaceOf(update.id);
        arrays[place.array].values.Replace(place.entry, std::move(update.prepared),
                                           image.array.values.Data(update.imageEntry),
                                           update.length);
    }
    if (!bringsEntries) return ImageResult::kLoaded;
    index = std::move(larger);
    idBases.push_back(totalCount);
    totalCount += image.array.entryCount;
    liveCount += image.liveCount;
    arrays.push_back(std::move(image.array));
    writable = false;
    return ImageResult::kLoaded;
}

std::vector<FastArray::Update> FastArray::TakeHeldKeys(ArrayImage& image) {
    std::vector<Update> updates;
    std::vector<std::uint32_t> updateOf(totalCount,
                                        kNoId);  // index of each existing entry's update
    cFarray& array = image.array;
    array.FilterListed([&](std::uint16_t slot, std::uint32_t entry) {
        const std::uint16_t keyLength = array.keys.Length(entry);
        if (image.hashedKeys[entry].slot == ArrayImage::kNoSlot || keyLength >= kMergedKeyLimit)
            return true;
        Place place{};
        const std::uint32_t held =
            FindUnder(SlotHash(image, slot, entry), array.keys.Data(entry), keyLength, place);
        if (held == kNoId) return true;
        if (updateOf[held] == kNoId) {
            updateOf[held] = static_cast<std::uint32_t>(updates.size());
            updates.push_back({.id = held});
        }
        Update& update = updates[updateOf[held]];  // of several new values the last one counts
        update.imageEntry = entry;
        update.length = array.values.Length(entry);
        array.Kill(entry);
        image.hashedKeys[entry].slot = ArrayImage::kNoSlot;
        --image.liveCount;
        return false;
    });
    for (Update& update : updates) {
        const Place place = PlaceOf(update.id);
        update.prepared = arrays[place.array].values.PrepareReplace(
            place.entry, array.values.Data(update.imageEntry), update.length);
    }
    return updates;
}

KeyIndex<std::uint32_t> FastArray::IndexWith(const ArrayImage& image) const {
    KeyIndex<std::uint32_t> larger = index;
    larger.Reserve(std::min<std::size_t>(image.array.ids.size(), image.array.entryCount));
    image.array.ForEachListed([&](std::uint16_t slot, std::uint32_t entry) {
        if (image.hashedKeys[entry].slot == ArrayImage::kNoSlot) return;
        larger.PutLast(SlotHash(image, slot, entry), totalCount + entry);
    });
    return larger;
}

std::uint32_t FastArray::Read(std::istream& in, char /*encoding*/, lexon::EndianT order) {
    ImageReader reader(in, order);
    Load(reader);
    return 0;
}

std::uint32_t FastArray::Read(const char* begin, const char* end, bool /*copyKeys*/,
                              char /*encoding*/, lexon::EndianT order) {
    ImageReader reader(begin, end, order);
    Load(reader);
    return 0;
}

}  // namespace lexon_private
