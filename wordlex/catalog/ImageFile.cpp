#include "wordlex/catalog/ImageFile.h"

#include <algorithm>
#include <limits>

#include "wordlex/catalog/Loaders.h"
#include "wordlex/functionality/BinaryFormat.h"

namespace lexon::detail {

using lexon_private::ImageFault;
using lexon_private::ImageReader;

namespace {

template <class T>
T At(Bytes table, std::size_t i) noexcept {
    return LoadAt<T>(table, i * sizeof(T));
}

// The bytes are the loader's own.
template <class T>
void Set(Bytes table, std::size_t i, T value) noexcept {
    std::memcpy(const_cast<std::byte*>(table.data()) + i * sizeof(T), &value, sizeof value);
}

template <class T>
void Swap(Bytes table) noexcept {
    for (std::size_t i = 0; i < table.size() / sizeof(T); ++i)
        Set(table, i, lexon_private::ByteSwap(At<T>(table, i)));
}

void SwapTexts(const Strings& texts) noexcept {
    Swap<std::uint32_t>(texts.offsets);
    Swap<std::uint16_t>(texts.lengths);
    Swap<std::uint16_t>(texts.area);
}

void SwapAll(const ImageParts& parts) noexcept {
    Swap<std::uint32_t>(parts.keys.offsets);
    Swap<std::uint16_t>(parts.keys.lengths);
    SwapTexts(parts.texts);
    Swap<std::uint16_t>(parts.slotNumbers);
    Swap<std::uint32_t>(parts.slotSizes);
    Swap<std::uint32_t>(parts.ids);
    Swap<std::uint32_t>(parts.acceleratorEntries);
    SwapTexts(parts.accelerators);
}

// What is wrong with the content of an image, by the place where it stands.
class Checker {
public:
    explicit Checker(Bytes image) noexcept : file(image) {}

    void CheckStrings(const Strings& strings, ImageFault fault) const {
        const std::size_t count = strings.offsets.size() / sizeof(std::uint32_t);
        RefuseFirst(strings.offsets, sizeof(std::uint32_t), count, fault, [&](std::size_t i) {
            return std::uint64_t{At<std::uint32_t>(strings.offsets, i)} +
                       At<std::uint16_t>(strings.lengths, i) >
                   strings.area.size();
        });
    }
    template <class T>
    void CheckBelow(Bytes table, std::uint64_t bound, ImageFault fault) const {
        RefuseFirst(table, sizeof(T), table.size() / sizeof(T), fault,
                    [&](std::size_t i) { return At<T>(table, i) >= bound; });
    }

private:
    // Goes through all items without a branch, and looks for the bad one only when there is one.
    template <class IsBad>
    void RefuseFirst(Bytes table, std::size_t itemSize, std::size_t count, ImageFault fault,
                     IsBad isBad) const {
        bool bad = false;
        for (std::size_t i = 0; i < count; ++i)
            bad |= isBad(i);
        for (std::size_t i = 0; bad && i < count; ++i)
            if (isBad(i)) Throw(table, i * itemSize, fault);
    }
    [[noreturn]] void Throw(Bytes table, std::size_t at, ImageFault fault) const {
        throw LoadFault{{.code = LoadError::Code::kMalformed,
                         .offset = static_cast<std::uint64_t>(table.data() - file.data()) + at,
                         .reason = lexon_private::Describe(fault)}};
    }

    Bytes file;
};

// Puts texts that lie at odd addresses where they can be handed out: into a copy of their area, or
// into one of the area without its first byte.
void Align(Strings& texts, CatalogStore& store) {
    const std::size_t count = texts.offsets.size() / sizeof(std::uint32_t);
    bool oddOffsets = false;
    for (std::size_t i = 0; i < count; ++i)
        oddOffsets |= At<std::uint32_t>(texts.offsets, i) % 2 != 0;
    const bool oddArea = reinterpret_cast<std::uintptr_t>(texts.area.data()) % 2 != 0;
    if (!oddArea && !oddOffsets) return;

    const std::size_t size = texts.area.size();
    const std::size_t secondAt = (size + 1) / 2 * 2;
    if (oddOffsets && secondAt > std::numeric_limits<std::uint32_t>::max() / 2) {
        throw LoadFault{{.code = LoadError::Code::kMalformed,
                         .reason = "texts at odd offsets in an area of more than 2 GB"}};
    }
    const std::size_t room = secondAt + (oddOffsets ? size : 0);
    auto copy = std::make_unique_for_overwrite<char16_t[]>(room / 2 + 1);
    auto* const bytes = reinterpret_cast<std::byte*>(copy.get());
    std::copy(texts.area.begin(), texts.area.end(), bytes);
    if (oddOffsets) {
        std::copy(texts.area.begin() + 1, texts.area.end(), bytes + secondAt);
        for (std::size_t i = 0; i < count; ++i) {
            const auto offset = At<std::uint32_t>(texts.offsets, i);
            if (offset % 2 != 0)
                Set(texts.offsets, i, static_cast<std::uint32_t>(secondAt + offset - 1));
        }
    }
    texts.area = Bytes(bytes, room);
    store.keepers.push_back(std::shared_ptr<const char16_t[]>(std::move(copy)));
}

// The entries that a look-up by key finds. The engine searches the list of the slot that a key's
// bytes give, and takes the first entry that has the key.
class Listing {
public:
    Listing(const ImageParts& image, std::uint64_t seed)
        : parts(image), builder(image.entryCount, seed) {}

    void MoveInto(CatalogStore& store) && {
        if (!AddInOrderOfIds()) AddInOrderOfLists();
        Flush();
        std::move(builder).MoveInto(store);
    }

private:
    static constexpr std::uint16_t kNotListed = 0xFFFF;
    static constexpr std::size_t kBatch = 32;  // keys whose buckets are fetched at once

    struct Pending {
        std::uint32_t id;
        std::uint64_t hash;
    };

    // Reads the entries as they lie, much the faster way; false when the lists are not such that it
    // gives the same: with every id at most once, and ascending.
    bool AddInOrderOfIds() {
        auto slotOf = std::make_unique_for_overwrite<std::uint16_t[]>(parts.entryCount);
        std::fill_n(slotOf.get(), parts.entryCount, kNotListed);
        bool plain = true;
        std::uint16_t lastSlot = kNotListed;
        std::uint32_t lastId = 0;
        ForEachListed([&](std::uint16_t slot, std::uint32_t id) {
            plain &= slotOf[id] == kNotListed && (slot != lastSlot || id > lastId);
            slotOf[id] = slot;
            lastSlot = slot;
            lastId = id;
        });
        for (std::uint32_t id = 0; plain && id < parts.entryCount; ++id)
            if (slotOf[id] != kNotListed) Add(slotOf[id], id);
        return plain;
    }

    void AddInOrderOfLists() {
        ForEachListed([this](std::uint16_t slot, std::uint32_t id) { Add(slot, id); });
    }

    template <class Visit>
    void ForEachListed(Visit visit) const {
        std::size_t next = 0;
        for (std::size_t s = 0; s < parts.slotSizes.size() / sizeof(std::uint32_t); ++s) {
            const auto slot = At<std::uint16_t>(parts.slotNumbers, s);
            for (auto left = At<std::uint32_t>(parts.slotSizes, s); left != 0; --left)
                visit(slot, At<std::uint32_t>(parts.ids, next++));
        }
    }

    void Add(std::uint16_t slotNumber, std::uint32_t id) noexcept {
        const std::string_view key = KeyOf(id);
        if (key.empty()) return;  // was removed
        const auto* const bytes = reinterpret_cast<const unsigned char*>(key.data());
        if (lexon_private::HashFunc(bytes, key.size()) != slotNumber) return;
        pending[pendingCount++] = {id, builder.Prepare(key)};
        if (pendingCount == kBatch) Flush();
    }

    void Flush() noexcept {
        for (const auto& [id, hash] : std::span(pending).first(pendingCount)) {
            const auto [place, isNew] = builder.Claim(
                KeyOf(id), hash, [this](std::uint32_t other) { return KeyOf(other); });
            if (!isNew) continue;
            builder.Set(place, id, {parts.keys.Offset(id), parts.keys.Length(id)},
                        {parts.texts.Offset(id), parts.texts.Length(id)});
        }
        pendingCount = 0;
    }

    // The strings have been checked.
    std::string_view KeyOf(std::uint32_t id) const noexcept {
        const std::byte* const area = parts.keys.area.data();
        return {reinterpret_cast<const char*>(area) + parts.keys.Offset(id), parts.keys.Length(id)};
    }

    const ImageParts& parts;
    IndexBuilder builder;
    Pending pending[kBatch];
    std::size_t pendingCount = 0;
};

}  // namespace

void Adopt(const ImageParts& parts, CatalogStore& store) {
    store.locale = parts.header.locale.value_or("");
    if (parts.liveCount == 0) return;  // the image brings nothing
    store.entryCount = parts.entryCount;
    store.keyed = parts.keyed;
    store.keys = parts.keys;
    store.texts = parts.texts;
    store.acceleratorCount = parts.acceleratorCount;
    store.acceleratorEntries = parts.acceleratorEntries;
    store.accelerators = parts.accelerators;
}

std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file, std::uint64_t seed, ImageParts& parts) {
    auto store = std::make_shared<CatalogStore>();
    ImageReader reader = ReaderOf(file.bytes);
    parts.ReadHead(reader);
    parts.ReadSlots(reader);
    parts.ReadAccelerators(reader);
    if (!reader.Ok()) ThrowFault(reader);
    if (lexon_private::setEndian(parts.header.order)) SwapAll(parts);

    const Checker checker(file.bytes);
    checker.CheckStrings(parts.keys, ImageFault::kKeyOutside);
    checker.CheckStrings(parts.texts, ImageFault::kValueOutside);
    checker.CheckBelow<std::uint16_t>(parts.slotNumbers, lexon_private::kHashBucketCount,
                                      ImageFault::kSlotOutside);
    checker.CheckBelow<std::uint32_t>(parts.ids, parts.entryCount, ImageFault::kIdOutside);
    checker.CheckBelow<std::uint32_t>(parts.acceleratorEntries, parts.entryCount,
                                      ImageFault::kIdOutside);
    checker.CheckStrings(parts.accelerators, ImageFault::kAcceleratorOutside);

    Align(parts.texts, *store);
    Align(parts.accelerators, *store);
    Adopt(parts, *store);
    if (parts.liveCount != 0 && parts.keyed) Listing(parts, seed).MoveInto(*store);
    store->keepers.push_back(std::shared_ptr<const std::byte[]>(std::move(file.block)));
    return store;
}

std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file) {
    ImageParts parts;
    return LoadImage(std::move(file), IndexBuilder::RandomSeed(), parts);
}

bool IsBinary(Bytes file) noexcept {
    return lexon_private::HasBinaryMagic(reinterpret_cast<const char*>(file.data()), file.size());
}

bool WantsOddAddress(Bytes head) noexcept {
    // The tables before the key area have even sizes; what is odd comes from the fixed fields, the
    // locale and the keys.
    try {
        ImageReader reader = ReaderOf(head);
        lexon_private::PassMagic(reader);
        const auto header = lexon_private::ReadBinaryHeader(reader);
        if (header.body != lexon_private::BinaryHeader::Body::kVersion2) return false;
        reader.Get<std::uint32_t>();
        const bool keyed = reader.Get<std::uint8_t>() != lexon_private::kNotKeyed;
        for (int i = 0; i < 3; ++i)
            reader.Get<std::uint32_t>();
        const std::uint32_t keySize = keyed ? reader.Get<std::uint32_t>() : 0;
        reader.Get<std::uint32_t>();
        return reader.Ok() && (reader.Offset() + keySize) % 2 != 0;
    } catch (const std::bad_alloc&) {  // of a long locale
        return false;
    }
}

}  // namespace lexon::detail
