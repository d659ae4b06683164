#include "wordlex/functionality/FastArray.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <istream>
#include <ostream>

#include "wordlex/functionality/ImageWriter.h"
#include "wordlex/functionality/TextLine.h"

namespace lexon_private {

namespace {

// A key of this length and more is not recognised when an image is merged.
constexpr unsigned long kMergedKeyLimit = 1024;

bool IsDead(const cFarray& array, std::uint32_t entry) {
    return array.keyed && array.keys.Length(entry) == 0;
}

UnicodeRun RunOf(const unsigned short* units, unsigned long unitCount) {
    return unitCount == 0 ? UnicodeRun() : UnicodeRun(units, unitCount);
}

// Room for one more item that keeps appending cheap.
template <class T>
void ReserveOneMore(std::vector<T>& items) {
    constexpr std::size_t kFirst = 10;
    if (items.size() == items.capacity()) items.reserve(std::max(kFirst, 2 * items.size()));
}

// Makes the stream bad, also one that was told to throw then.
void Spoil(std::ostream& out) noexcept {
    try {
        out.setstate(std::ios_base::badbit);
    } catch (...) {  // the state is set all the same
    }
}

}  // namespace

// Look-ups

int FastArray::getArrayNum(std::uint32_t id) const {
    if (id >= totalCount) return -1;
    // A binary search without branches to be guessed: the last base that is not above the id.
    const std::uint32_t* base = idBases.data();
    for (std::size_t left = idBases.size(); left > 1;) {
        const std::size_t half = left / 2;
        base += base[half] <= id ? half : 0;
        left -= half;
    }
    return static_cast<int>(base - idBases.data());
}

FastArray::Place FastArray::PlaceOf(std::uint32_t id) const {
    const auto array = static_cast<std::size_t>(getArrayNum(id));
    return {array, id - idBases[array]};
}

const cFarray* FastArray::FindEntry(std::uint32_t id, std::uint32_t& entry) const {
    if (id >= totalCount) return nullptr;
    const Place place = PlaceOf(id);
    entry = place.entry;
    const cFarray& array = arrays[place.array];
    return IsDead(array, entry) ? nullptr : &array;
}

std::uint32_t FastArray::FindListed(const IdList& slot, std::uint16_t tag, const unsigned char* key,
                                    unsigned long keyLength) const {
    for (std::uint32_t i = slot.Find(tag, 0); i != slot.Count(); i = slot.Find(tag, i + 1)) {
        const Place place = PlaceOf(slot.Ids()[i]);
        const PackedRuns<unsigned char>& keys = arrays[place.array].keys;
        if (keys.Length(place.entry) != keyLength) continue;
        if (keyLength == 0 || std::memcmp(keys.Data(place.entry), key, keyLength) == 0) {
            return slot.Ids()[i];
        }
    }
    return kNoId;
}

std::uint32_t FastArray::FindId(const unsigned char* key, unsigned long keyLength) const {
    return FindListed(slots[HashFunc(key, keyLength)], IdList::Tag(key, keyLength), key, keyLength);
}

bool FastArray::ValidId(std::uint32_t id) const {
    std::uint32_t entry = 0;
    return FindEntry(id, entry) != nullptr;
}

UnicodeRun FastArray::GetValue(std::uint32_t id) const {
    const unsigned short* units = nullptr;
    unsigned long unitCount = 0;
    return GetUTF16Ptr(id, units, unitCount) ? RunOf(units, unitCount) : UnicodeRun();
}

bool FastArray::GetUTF16Ptr(std::uint32_t id, const unsigned short*& units,
                            unsigned long& unitCount) const {
    std::uint32_t entry = 0;
    const cFarray* const array = FindEntry(id, entry);
    if (array == nullptr) return false;
    units = array->values.Data(entry);
    unitCount = array->values.Length(entry) / sizeof *units;
    return true;
}

UnicodeRun FastArray::Accelerator(std::uint32_t id) const {
    std::uint32_t entry = 0;
    const cFarray* const array = FindEntry(id, entry);
    if (array == nullptr) return {};
    const std::uint32_t index = array->getAccelIndex(entry);
    if (index == array->acceleratorCount) return {};
    return RunOf(array->accelerators.Data(index),
                 array->accelerators.Length(index) / sizeof(unsigned short));
}

char* FastArray::FindStringId(std::uint32_t id) const {
    const int number = getArrayNum(id);
    if (number < 0 || !arrays[static_cast<std::size_t>(number)].keyed) return nullptr;
    std::uint32_t entry = 0;
    const cFarray* const array = FindEntry(id, entry);
    const std::size_t length = array != nullptr ? array->keys.Length(entry) : 0;
    auto* const text = new char[length + 1];
    if (length != 0) std::memcpy(text, array->keys.Data(entry), length);
    text[length] = '\0';
    return text;
}

bool FastArray::GetData(std::uint32_t id, char* buffer, unsigned long size) const {
    if (buffer == nullptr || size == 0) return false;
    *buffer = '\0';
    std::uint32_t entry = 0;
    const cFarray* const array = FindEntry(id, entry);
    if (array == nullptr || !array->keyed || array->keys.Length(entry) >= size) return false;
    const auto* const key = array->keys.Data(entry);
    *std::copy_n(key, array->keys.Length(entry), buffer) = '\0';
    return true;
}

bool FastArray::HasMoreItem() const {
    const auto isDead = [this](std::uint32_t id) {
        std::uint32_t entry = 0;
        return FindEntry(id, entry) == nullptr;
    };
    if (restart) {
        restart = false;
        cursor = 0;
    } else {
        ++cursor;
        while (cursor < totalCount && isDead(cursor))
            ++cursor;
    }
    restart = cursor >= totalCount;
    return !restart;
}

// Changes

void FastArray::readSetup() {
    ReserveOneMore(arrays);
    ReserveOneMore(idBases);
}

cFarray& FastArray::WritableArray() {
    if (writable) return arrays.back();
    cFarray fresh;
    fresh.keys.MakeEmpty(kWritableEntries);
    fresh.values.MakeEmpty(kWritableEntries);
    readSetup();
    idBases.push_back(totalCount);
    arrays.push_back(std::move(fresh));
    writable = true;
    return arrays.back();
}

std::uint32_t FastArray::Add(const unsigned char* key, unsigned long keyLength,
                             const unsigned char* value, unsigned long valueLength,
                             const unsigned char* accelerator, unsigned long acceleratorLength) {
    using Keys = PackedRuns<unsigned char>;
    using Texts = PackedRuns<unsigned short>;
    if (accelerator == nullptr) acceleratorLength = 0;
    const std::uint16_t tag = IdList::Tag(key, keyLength);
    IdList& slot = slots[HashFunc(key, keyLength)];
    const std::uint32_t held = FindListed(slot, tag, key, keyLength);
    if (held != kNoId) {
        updateVals(held, value, valueLength, accelerator, acceleratorLength);
        return held;
    }

    const std::uint16_t storedKey = Keys::StoredLength(keyLength);
    const std::uint16_t storedValue = Texts::StoredLength(valueLength);
    const std::uint16_t storedAccelerator = Texts::StoredLength(acceleratorLength);
    auto ownKey = Keys::Copy(key, storedKey, addedStrings);
    auto ownValue = Texts::Copy(value, storedValue, addedStrings);
    auto ownAccelerator = Texts::Copy(accelerator, storedAccelerator, addedStrings);
    cFarray& array = WritableArray();
    if (ownAccelerator != nullptr) array.PrepareAccelerators(kWritableEntries);
    slot.Reserve(1);
    // From here on nothing fails.
    const std::uint32_t entry = array.entryCount++;
    array.keys.Put(entry, std::move(ownKey), storedKey);
    array.values.Put(entry, std::move(ownValue), storedValue);
    if (ownAccelerator != nullptr) {
        array.AddAccelerator(entry, std::move(ownAccelerator), storedAccelerator);
    }
    slot.Append(totalCount, tag);
    writable = array.entryCount < kWritableEntries;
    ++liveCount;
    return totalCount++;
}

void FastArray::updateVals(std::uint32_t id, const unsigned char* value, unsigned long valueLength,
                           const unsigned char* accelerator, unsigned long acceleratorLength) {
    using Texts = PackedRuns<unsigned short>;
    const Place place = PlaceOf(id);
    cFarray& array = arrays[place.array];
    const std::uint32_t entry = place.entry;
    const std::uint16_t storedValue = Texts::StoredLength(valueLength);
    const std::uint16_t storedAccelerator = Texts::StoredLength(acceleratorLength);
    const bool firstAccelerator = storedAccelerator != 0 && array.acceleratorCount == 0;
    const std::uint32_t acceleratorIndex =
        storedAccelerator != 0 ? array.getAccelIndex(entry) : array.acceleratorCount;

    Texts::Run ownValue = array.values.PrepareReplace(entry, value, storedValue);
    Texts::Run ownAccelerator;
    if (firstAccelerator) {
        array.PrepareAccelerators(kWritableEntries);
        ownAccelerator = Texts::Copy(accelerator, storedAccelerator);
    } else if (acceleratorIndex != array.acceleratorCount) {
        ownAccelerator =
            array.accelerators.PrepareReplace(acceleratorIndex, accelerator, storedAccelerator);
    }
    // From here on nothing fails.
    if (firstAccelerator) {
        array.AddAccelerator(entry, std::move(ownAccelerator), storedAccelerator);
    } else if (acceleratorIndex != array.acceleratorCount) {
        array.accelerators.Replace(acceleratorIndex, std::move(ownAccelerator), accelerator,
                                   storedAccelerator);
    }
    array.values.Replace(entry, std::move(ownValue), value, storedValue);
}

std::uint32_t FastArray::Remove(std::uint32_t id) {
    if (id >= totalCount) return kNoId;
    const Place place = PlaceOf(id);
    cFarray& array = arrays[place.array];
    if (!array.keyed || IsDead(array, place.entry)) return kNoId;
    array.Kill(place.entry);
    --liveCount;
    return id;
}

// Loading

ImageResult FastArray::Load(ImageReader& reader) {
    ArrayImage image(reader, totalCount);
    if (!reader.Ok()) {
        return IsMalformed(reader.Fault()) ? ImageResult::kMalformed : ImageResult::kRejected;
    }
    if (image.liveCount == 0) return ImageResult::kLoaded;

    std::vector<Update> updates;
    if (totalCount != 0 && image.idBase == 0) updates = updateStrValsIfKeyExists(image);
    const bool bringsEntries = image.liveCount != 0;
    SlotCounts added{};
    std::unique_ptr<std::byte[]> lists;
    if (bringsEntries) {
        image.ForEachListed([&](std::uint16_t slot, std::uint32_t) { ++added[slot]; });
        lists = ReserveLists(added);
        readSetup();
    }
    // From here on nothing fails.
    for (Update& update : updates) {
        const Place place = PlaceOf(update.id);
        arrays[place.array].values.Replace(place.entry, std::move(update.prepared),
                                           image.array.values.Data(update.imageEntry),
                                           update.length);
    }
    if (bringsEntries) Append(std::move(image), std::move(lists), added);
    return ImageResult::kLoaded;
}

std::vector<FastArray::Update> FastArray::updateStrValsIfKeyExists(ArrayImage& image) {
    std::vector<Update> updates;
    std::vector<std::uint32_t> updateOf(totalCount, kNoId);  // index of each held entry's update
    cFarray& array = image.array;
    image.FilterListed([&](std::uint16_t slot, std::uint32_t entry) {
        const std::uint16_t tag = image.tags[entry];
        const std::uint16_t keyLength = array.keys.Length(entry);
        if (tag == IdList::kNoKey || keyLength >= kMergedKeyLimit) return true;
        const std::uint32_t held = FindListed(slots[slot], tag, array.keys.Data(entry), keyLength);
        if (held == kNoId) return true;
        if (updateOf[held] == kNoId) {
            updateOf[held] = static_cast<std::uint32_t>(updates.size());
            updates.push_back({.id = held});
        }
        Update& update = updates[updateOf[held]];  // of several new values the last one counts
        update.imageEntry = entry;
        update.length = array.values.Length(entry);
        array.Kill(entry);
        image.tags[entry] = IdList::kNoKey;
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

// An empty store gets the lists of its first image in one block; otherwise every list grows for
// itself.
std::unique_ptr<std::byte[]> FastArray::ReserveLists(const SlotCounts& added) {
    if (totalCount != 0) {
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            slots[slot].Reserve(added[slot]);
        return nullptr;
    }
    std::size_t blockSize = 0;
    for (const std::uint32_t ids : added)
        blockSize += IdList::BlockSize(ids);
    return std::make_unique_for_overwrite<std::byte[]>(blockSize);
}

void FastArray::Append(ArrayImage&& image, std::unique_ptr<std::byte[]> lists,
                       const SlotCounts& added) noexcept {
    if (totalCount == 0) {
        std::byte* list = lists.get();
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            if (added[slot] == 0) continue;
            slots[slot].Borrow(list, added[slot]);
            list += IdList::BlockSize(added[slot]);
        }
        imageLists = std::move(lists);
    }
    image.ForEachListed([&](std::uint16_t slot, std::uint32_t entry) {
        slots[slot].Append(totalCount + entry, image.tags[entry]);
    });
    idBases.push_back(totalCount);
    totalCount += image.array.entryCount;
    liveCount += image.liveCount;
    arrays.push_back(std::move(image.array));
    writable = false;
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

// Writing

std::uint32_t FastArray::Serialize2(std::ostream& out, lexon::SaveType type,
                                    const lexon::EncodingInfo* /*encoding*/, lexon::EndianT order,
                                    unsigned int idBase) const try {
    switch (type) {
        case lexon::SaveType::kBinary:
            return bSerialize(out, true, order, idBase);
        case lexon::SaveType::kBinaryNoKeys:
            return bSerialize(out, false, order, idBase);
        case lexon::SaveType::kNothing:
            return 0;
        default:
            SerializeText(out);
            return 0;
    }
} catch (...) {
    std::cerr << "Serialize2"
              << ": Caught exception\n";
    Spoil(out);
    return 0;
}

template <class Visit>
void FastArray::ForEach(Visit visit) const {
    for (const cFarray& array : arrays) {
        for (std::uint32_t entry = 0; entry < array.entryCount; ++entry)
            visit(array, entry);
    }
}

void FastArray::ForEachEntry(const EntryVisitor& visit) const {
    EntryView view;
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        view.keyed = array.keyed;
        view.key = {};
        if (array.keyed) view.key = {array.keys.Data(entry), array.keys.Length(entry)};
        view.value = {array.values.Data(entry), array.values.Length(entry) / sizeof(short)};
        view.accelerator = {};
        const std::uint32_t index = array.getAccelIndex(entry);
        if (index != array.acceleratorCount) {
            view.accelerator = {array.accelerators.Data(index),
                                array.accelerators.Length(index) / sizeof(short)};
        }
        // One with a value alone has the empty key.
        if (!array.keyed || !view.key.empty() || !view.value.empty()) visit(view);
        ++view.id;
    });
}

std::uint32_t FastArray::bSerialize(std::ostream& out, bool withKeys, lexon::EndianT order,
                                    std::uint32_t idBase) const {
    // An array may be empty when memory ran out before it got its first entry.
    const auto hasKeys = [](const cFarray& array) { return array.keyed && array.entryCount != 0; };
    const bool keyed = withKeys && std::any_of(arrays.begin(), arrays.end(), hasKeys);
    const auto keyLength = [](const cFarray& array, std::uint32_t entry) -> std::uint16_t {
        return array.keyed ? array.keys.Length(entry) : std::uint16_t{0};
    };
    const auto valueLength = [](const cFarray& array, std::uint32_t entry) {
        return array.values.Length(entry);
    };
    const auto sumOf = [this](auto length) {
        std::uint64_t sum = 0;
        ForEach([&](const cFarray& array, std::uint32_t entry) { sum += length(array, entry); });
        return sum;
    };
    const auto usedSlots = std::count_if(slots.begin(), slots.end(),
                                         [](const IdList& slot) { return slot.Count() != 0; });

    BlockStream blocks(out);
    ImageWriter writer(blocks, order);
    writer.write4(idBase);
    writer.WriteByte(keyed ? kKeyed : kNotKeyed);
    writer.write4(totalCount);
    writer.write4(liveCount);
    writer.write4(static_cast<std::uint32_t>(usedSlots));
    if (keyed) writer.WriteSize(sumOf(keyLength));
    writer.WriteSize(sumOf(valueLength));

    const auto writeTables = [&](auto length) {
        std::uint32_t offset = 0;
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            writer.write4(offset);
            offset += length(array, entry);
        });
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            writer.write2(length(array, entry));
        });
    };
    if (keyed) writeTables(keyLength);
    writeTables(valueLength);
    if (keyed) {
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            if (array.keyed) writer.WriteBytes(array.keys.Data(entry), array.keys.Length(entry));
        });
    }
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        writer.writearr2(array.values.Data(entry), array.values.Length(entry));
    });
    if (keyed) WriteHashIndex(writer);
    WriteAccelerators(writer);
    blocks.Finish();
    return writer.Written();
}

void FastArray::WriteHashIndex(ImageWriter& writer) const {
    const auto forEachUsed = [this](auto visit) {
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            if (slots[slot].Count() != 0) visit(slot, slots[slot]);
        }
    };
    forEachUsed(
        [&](std::size_t slot, const IdList&) { writer.write2(static_cast<std::uint16_t>(slot)); });
    forEachUsed([&](std::size_t, const IdList& list) { writer.write4(list.Count()); });
    forEachUsed([&](std::size_t, const IdList& list) {
        for (std::uint32_t i = 0; i < list.Count(); ++i)
            writer.write4(list.Ids()[i]);
    });
}

void FastArray::WriteAccelerators(ImageWriter& writer) const {
    struct Accelerator {
        const cFarray* array;
        std::uint32_t index;
        std::uint32_t id;
        std::uint16_t length;
    };
    std::vector<Accelerator> texts;
    std::uint64_t areaSize = 0;
    for (std::size_t a = 0; a < arrays.size(); ++a) {
        for (std::uint32_t i = 0; i < arrays[a].acceleratorCount; ++i) {
            const std::uint16_t length = arrays[a].accelerators.Length(i);
            if (length == 0) continue;
            texts.push_back({&arrays[a], i, idBases[a] + arrays[a].acceleratorEntries[i], length});
            areaSize += length;
        }
    }
    writer.write4(static_cast<std::uint32_t>(texts.size()));
    if (texts.empty()) return;
    writer.WriteSize(areaSize);
    for (const Accelerator& text : texts)
        writer.write4(text.id);
    std::uint32_t offset = 0;
    for (const Accelerator& text : texts) {
        writer.write4(offset);
        offset += text.length;
    }
    for (const Accelerator& text : texts)
        writer.write2(text.length);
    for (const Accelerator& text : texts)
        writer.writearr2(text.array->accelerators.Data(text.index), text.length);
}

// The line of an entry, as a hash-table entry writes it, but of one with the empty key the value
// alone: the value's writer closes the quotation that the key's opens.
void FastArray::SerializeText(std::ostream& out) const {
    BlockStream blocks(out);
    TextLine line(blocks);
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        const std::uint16_t keyLength = array.keyed ? array.keys.Length(entry) : std::uint16_t{0};
        const std::uint16_t valueLength = array.values.Length(entry);
        if (keyLength != 0) line.PutKey({array.keys.Data(entry), keyLength});
        if (keyLength != 0 || valueLength != 0) {
            line.PutValue({array.values.Data(entry), valueLength / sizeof(unsigned short)});
        }
    });
    line.Write();
    blocks.Finish();
}

}  // namespace lexon_private
