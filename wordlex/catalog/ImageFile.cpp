#include "wordlex/catalog/ImageFile.h"

#include <algorithm>
#include <limits>

#include "wordlex/catalog/Loaders.h"
#include "wordlex/functionality/BinaryFormat.h"

namespace lexon::detail {

using lexon_private::ImageFault;
using lexon_private::ImageReader;

namespace {

// The bytes belong to the loader.
template <class T>
void Set(Bytes table, std::size_t i, T value) noexcept {
    std::memcpy(const_cast<std::byte*>(table.data()) + i * sizeof(T), &value, sizeof value);
}

template <class T>
void Swap(Bytes table) noexcept {
    for (std::size_t i = 0; i < table.size() / sizeof(T); ++i)
        Set(table, i, lexon_private::ByteSwap(ItemAt<T>(table, i)));
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
    Swap<std::uint16_t>(parts.lists.slots);
    Swap<std::uint32_t>(parts.lists.sizes);
    Swap<std::uint32_t>(parts.lists.ids);
    Swap<std::uint32_t>(parts.acceleratorEntries);
    SwapTexts(parts.accelerators);
}

// Finds faults in the content of an image, by their places.
class Checker {
public:
    explicit Checker(Bytes image) noexcept : file(image) {}

    void CheckStrings(const Strings& strings, ImageFault fault) const {
        const std::size_t count = strings.offsets.size() / sizeof(std::uint32_t);
        RefuseFirst(strings.offsets, sizeof(std::uint32_t), count, fault, [&](std::size_t i) {
            return std::uint64_t{ItemAt<std::uint32_t>(strings.offsets, i)} +
                       ItemAt<std::uint16_t>(strings.lengths, i) >
                   strings.area.size();
        });
    }
    template <class T>
    void CheckBelow(Bytes table, std::uint64_t bound, ImageFault fault) const {
        RefuseFirst(table, sizeof(T), table.size() / sizeof(T), fault,
                    [&](std::size_t i) { return ItemAt<T>(table, i) >= bound; });
    }

private:
    // Checks all items without a branch, and searches for the bad one only when there is one.
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

// Moves texts at odd addresses to even ones: into a copy of their area, or of the area without its
// first byte.
void Align(Strings& texts, CatalogStore& store) {
    const std::size_t count = texts.offsets.size() / sizeof(std::uint32_t);
    std::uint32_t allOffsets = 0;
    for (std::size_t i = 0; i < count; ++i)
        allOffsets |= ItemAt<std::uint32_t>(texts.offsets, i);
    const bool oddOffsets = allOffsets % 2 != 0;
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
            const auto offset = ItemAt<std::uint32_t>(texts.offsets, i);
            if (offset % 2 != 0)
                Set(texts.offsets, i, static_cast<std::uint32_t>(secondAt + offset - 1));
        }
    }
    texts.area = Bytes(bytes, room);
    store.keepers.push_back(std::shared_ptr<const char16_t[]>(std::move(copy)));
}

}  // namespace

void Adopt(const ImageParts& parts, CatalogStore& store) {
    store.locale = parts.header.locale.value_or("");
    if (parts.liveCount == 0) return;  // the image is to be ignored
    store.entryCount = parts.entryCount;
    store.keyed = parts.keyed;
    store.keys = parts.keys;
    store.texts = parts.texts;
    store.acceleratorCount = parts.acceleratorCount;
    store.acceleratorEntries = parts.acceleratorEntries;
    store.accelerators = parts.accelerators;
}

std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file, ImageParts& parts) {
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
    checker.CheckBelow<std::uint16_t>(parts.lists.slots, lexon_private::kHashBucketCount,
                                      ImageFault::kSlotOutside);
    checker.CheckBelow<std::uint32_t>(parts.lists.ids, parts.entryCount, ImageFault::kIdOutside);
    checker.CheckBelow<std::uint32_t>(parts.acceleratorEntries, parts.entryCount,
                                      ImageFault::kIdOutside);
    checker.CheckStrings(parts.accelerators, ImageFault::kAcceleratorOutside);

    Align(parts.texts, *store);
    Align(parts.accelerators, *store);
    Adopt(parts, *store);
    if (parts.liveCount != 0 && parts.keyed)
        store->SetLists(parts.lists, IndexBuilder::RandomSeed());
    store->keepers.push_back(std::shared_ptr<const std::byte[]>(std::move(file.block)));
    return store;
}

std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file) {
    ImageParts parts;
    return LoadImage(std::move(file), parts);
}

bool IsBinary(Bytes file) noexcept {
    return lexon_private::HasBinaryMagic(reinterpret_cast<const char*>(file.data()), file.size());
}

bool WantsOddAddress(Bytes head) noexcept {
    // The tables before the key area have even sizes. Only the fixed fields, the locale and the
    // keys can have odd ones.
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
