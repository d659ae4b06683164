#include "wordlex/catalog/IndexSection.h"

#include <bit>
#include <concepts>

#include "wordlex/catalog/ImageFile.h"

namespace lexon::detail {

namespace {

// On disk: never change.
constexpr std::string_view kMagic = "WlxIndex";
constexpr std::uint32_t kVersion = 1;
constexpr std::uint32_t kMostProbes = 64;  // further buckets that a reader searches
constexpr std::uint32_t kSeeds = 16;       // tried by the writer
struct Fixed {
    std::uint32_t version;
    std::uint32_t seed;
    std::uint32_t bucketCount;
    std::uint32_t longestProbe;
    std::uint64_t textsAt;  // in the file; even, as is the next one
    std::uint64_t acceleratorTextsAt;
    std::uint64_t acceleratorsAt;  // their number, in the image
};
static_assert(sizeof(Fixed) == 40);
constexpr std::size_t kBucketsAt = 64;  // in the section, which begins at a multiple of it
static_assert(kMagic.size() + sizeof(std::uint64_t) == kIndexTrailerSize);

class Writer {
public:
    explicit Writer(bool swapBytes) noexcept : swap(swapBytes) {}

    template <std::unsigned_integral... T>
    void Put(T... values) {
        (PutOne(values), ...);
    }
    template <std::unsigned_integral T>
    void PutTable(Bytes table) {
        for (std::size_t at = 0; at + sizeof(T) <= table.size(); at += sizeof(T))
            Put(LoadAt<T>(table, at));
    }
    std::string out;

private:
    template <class T>
    void PutOne(T value) {
        if (swap) value = lexon_private::ByteSwap(value);
        out.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    bool swap;
};

OwnedBytes CopyOf(std::string_view image) {
    auto block = std::make_unique_for_overwrite<std::byte[]>(image.size());
    std::memcpy(block.get(), image.data(), image.size());
    const std::span<std::byte> bytes(block.get(), image.size());
    return {std::move(block), bytes};
}

}  // namespace

std::string MakeIndexSection(std::string_view image) {
    ImageParts parts;
    const auto store = LoadImage(CopyOf(image), parts);
    MadeIndex made;
    std::uint32_t seed = 0;
    do {
        if (seed == kSeeds) return {};
        if (parts.liveCount != 0 && parts.keyed)
            made = parts.lists.MakeIndex(parts.entryCount, parts.keys, parts.texts, seed);
        ++seed;
    } while (made.index.longestProbe > kMostProbes);

    // The texts themselves if they are at even offsets of the file, else a copy.
    const Index& index = made.index;
    ImageParts inFile;
    {
        lexon_private::ImageReader reader = ReaderOf(std::as_bytes(std::span(image)));
        inFile.ReadHead(reader);
        inFile.ReadSlots(reader);
        inFile.ReadAccelerators(reader);
    }
    const auto offsetOf = [&](Bytes part) {
        return static_cast<std::uint64_t>(reinterpret_cast<const char*>(part.data()) -
                                          image.data());
    };
    std::uint64_t textsAt = offsetOf(inFile.texts.area);
    std::uint64_t acceleratorTextsAt =
        inFile.acceleratorCount == 0 ? 0 : offsetOf(inFile.accelerators.area);
    const std::uint64_t sectionAt =
        (image.size() + sizeof(Bucket) - 1) / sizeof(Bucket) * sizeof(Bucket);
    Writer writer(lexon_private::setEndian(inFile.header.order));
    const std::uint64_t copiesAt =
        sectionAt + kBucketsAt + index.buckets.size() + index.entries.size();
    Bytes textCopy;
    Bytes acceleratorCopy;
    if (textsAt % 2 != 0) {
        textCopy = store->texts.area;
        textsAt = copiesAt;
    }
    if (acceleratorTextsAt % 2 != 0) {
        acceleratorCopy = store->accelerators.area;
        acceleratorTextsAt = copiesAt + textCopy.size();
    }

    writer.out.append(sectionAt - image.size(), '\0');
    writer.Put(kVersion, seed - 1, index.bucketCount, index.longestProbe, textsAt,
               acceleratorTextsAt, inFile.acceleratorsAt);
    writer.out.append(kBucketsAt - sizeof(Fixed), '\0');
    for (std::size_t at = 0; at < index.buckets.size(); at += sizeof(Bucket)) {
        constexpr std::size_t kOffsetsAt = offsetof(Bucket, keyOffsets);
        const Bytes bucket = index.buckets.subspan(at, sizeof(Bucket));
        writer.PutTable<std::uint16_t>(bucket.first(kOffsetsAt));
        writer.PutTable<std::uint32_t>(bucket.subspan(kOffsetsAt));
    }
    writer.PutTable<std::uint32_t>(index.entries);
    writer.PutTable<std::uint16_t>(textCopy);
    writer.PutTable<std::uint16_t>(acceleratorCopy);
    writer.Put(sectionAt);
    writer.out += kMagic;
    return std::move(writer.out);
}

bool EndsInIndex(Bytes tail) noexcept {
    return std::string_view(reinterpret_cast<const char*>(tail.data()), tail.size())
        .ends_with(kMagic);
}

std::shared_ptr<CatalogStore> OpenIndexed(Bytes file, std::shared_ptr<const void> keeper) {
    if (file.size() < kIndexTrailerSize || !EndsInIndex(file)) return nullptr;
    if (reinterpret_cast<std::uintptr_t>(file.data()) % alignof(char16_t) != 0) return nullptr;

    ImageParts parts;
    lexon_private::ImageReader reader = ReaderOf(file);
    parts.ReadHead(reader);
    if (!reader.Ok() || lexon_private::setEndian(parts.header.order)) return nullptr;
    const auto sectionAt = LoadAt<std::uint64_t>(file, file.size() - kIndexTrailerSize);
    const auto head = Part(file, sectionAt, sizeof(Fixed));
    if (!head.has_value()) return nullptr;
    const auto fixed = LoadAt<Fixed>(*head, 0);
    if (fixed.version != kVersion || fixed.longestProbe > kMostProbes) return nullptr;
    const std::uint64_t bucketsSize = std::uint64_t{fixed.bucketCount} * sizeof(Bucket);
    const std::uint64_t bucketsAt = sectionAt + kBucketsAt;
    const auto buckets = Part(file, bucketsAt, bucketsSize);
    const auto entries =
        Part(file, bucketsAt + bucketsSize,
             std::uint64_t{fixed.bucketCount} * Bucket::kPlaces * sizeof(std::uint32_t));
    const auto texts = Part(file, fixed.textsAt, parts.texts.area.size());
    const auto tables = Part(file, fixed.acceleratorsAt, file.size() - fixed.acceleratorsAt);
    if (!buckets.has_value() || !entries.has_value() || !texts.has_value() || !tables.has_value())
        return nullptr;

    lexon_private::ImageReader rest = ReaderOf(*tables);
    parts.ReadAccelerators(rest);
    const auto acceleratorTexts =
        Part(file, fixed.acceleratorTextsAt, parts.accelerators.area.size());
    if (!rest.Ok() || !acceleratorTexts.has_value()) return nullptr;
    parts.texts.area = *texts;
    parts.accelerators.area = *acceleratorTexts;

    auto store = std::make_shared<CatalogStore>();
    Adopt(parts, *store);
    if (parts.liveCount != 0 && parts.keyed) {
        store->SetIndex(
            {{*buckets, *entries, fixed.bucketCount, fixed.longestProbe, fixed.seed}, nullptr});
    }
    if (keeper != nullptr) store->keepers.push_back(std::move(keeper));
    return store;
}

}  // namespace lexon::detail
