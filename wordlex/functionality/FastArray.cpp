#include "wordlex/functionality/FastArray.h"

#include <algorithm>
#include <cstring>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/KeyHash.h"

namespace lexon_private {

namespace {

bool IsDead(const cFarray& array, std::uint32_t entry) {
    return array.keyed && array.keys.Length(entry) == 0;
}

UnicodeRun RunOf(const unsigned short* units, unsigned long unitCount) {
    return unitCount == 0 ? UnicodeRun() : UnicodeRun::WithRoom(units, unitCount);
}

// Room for one more item, growing so that appending stays cheap.
template <class T>
void ReserveOneMore(std::vector<T>& items) {
    constexpr std::size_t kFirst = 10;
    if (items.size() == items.capacity()) items.reserve(std::max(kFirst, 2 * items.size()));
}

}  // namespace

// Look-ups

int FastArray::getArrayNum(std::uint32_t id) const {
    if (id >= totalCount) return -1;
    // A binary search without branches: the last base that is not above the id.
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

std::uint32_t FastArray::FindUnder(std::uint32_t hash, const unsigned char* key,
                                   unsigned long keyLength, Place& place) const {
    for (auto id = index.First(hash); id.has_value(); id = index.Next(hash, *id)) {
        place = PlaceOf(*id);
        const PackedRuns<unsigned char>& keys = arrays[place.array].keys;
        if (keys.Length(place.entry) == keyLength &&
            (keyLength == 0 || std::memcmp(keys.Data(place.entry), key, keyLength) == 0)) {
            return *id;
        }
    }
    return kNoId;
}

std::uint32_t FastArray::FindId(const unsigned char* key, unsigned long keyLength) const {
    Place place{};
    return FindUnder(KeyHash(key, keyLength), key, keyLength, place);
}

bool FastArray::FindUTF16Ptr(const unsigned char* key, unsigned long keyLength,
                             const unsigned short*& units, unsigned long& unitCount) const {
    Place place{};
    if (keyLength == 0 || FindUnder(KeyHash(key, keyLength), key, keyLength, place) == kNoId) {
        return false;
    }
    const PackedRuns<unsigned short>& values = arrays[place.array].values;
    units = values.Data(place.entry);
    unitCount = values.Length(place.entry) / sizeof *units;
    return true;
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
    const std::uint32_t text = array->getAccelIndex(entry);
    if (text == array->acceleratorCount) return {};
    return RunOf(array->accelerators.Data(text),
                 array->accelerators.Length(text) / sizeof(unsigned short));
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

void FastArray::ForEachEntry(const EntryVisitor& visit) const {
    EntryView view;
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        view.keyed = array.keyed;
        view.key = {};
        if (array.keyed) view.key = {array.keys.Data(entry), array.keys.Length(entry)};
        view.value = {array.values.Data(entry), array.values.Length(entry) / sizeof(short)};
        view.accelerator = {};
        const std::uint32_t text = array.getAccelIndex(entry);
        if (text != array.acceleratorCount) {
            view.accelerator = {array.accelerators.Data(text),
                                array.accelerators.Length(text) / sizeof(short)};
        }
        // An entry with only a value has the empty key.
        if (!array.keyed || !view.key.empty() || !view.value.empty()) visit(view);
        ++view.id;
    });
}

// Changes

void FastArray::ReserveArray() {
    ReserveOneMore(arrays);
    ReserveOneMore(idBases);
}

cFarray& FastArray::WritableArray() {
    if (writable) return arrays.back();
    cFarray fresh;
    fresh.MakeEmpty(kWritableEntries);
    ReserveArray();
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
    if (value == nullptr) valueLength = 0;
    if (accelerator == nullptr) acceleratorLength = 0;
    const std::uint32_t hash = KeyHash(key, keyLength);
    Place place{};
    const std::uint32_t held = FindUnder(hash, key, keyLength, place);
    if (held != kNoId) {
        ReplaceTexts(place, value, valueLength, accelerator, acceleratorLength);
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
    index.PutLast(hash, totalCount);
    // From here on nothing fails.
    const std::uint32_t entry = array.entryCount++;
    array.keys.Put(entry, std::move(ownKey), storedKey);
    array.values.Put(entry, std::move(ownValue), storedValue);
    if (ownAccelerator != nullptr) {
        array.AddAccelerator(entry, std::move(ownAccelerator), storedAccelerator);
    }
    array.slotNumbers[entry] = static_cast<std::uint16_t>(HashFunc(key, keyLength));
    writable = array.entryCount < kWritableEntries;
    ++liveCount;
    return totalCount++;
}

void FastArray::ReplaceTexts(Place place, const unsigned char* value, unsigned long valueLength,
                             const unsigned char* accelerator, unsigned long acceleratorLength) {
    using Texts = PackedRuns<unsigned short>;
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
    index.Remove(KeyHash(array.keys.Data(place.entry), array.keys.Length(place.entry)), id);
    array.Kill(place.entry);
    --liveCount;
    return id;
}

}  // namespace lexon_private
