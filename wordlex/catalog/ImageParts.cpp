#include "wordlex/catalog/ImageParts.h"

#include "wordlex/catalog/Loaders.h"
#include "wordlex/functionality/BinaryFormat.h"

namespace lexon::detail {

using lexon_private::ImageFault;
using lexon_private::ImageReader;

namespace {

Bytes Take(ImageReader& reader, std::uint64_t count, std::size_t itemSize) {
    const lexon_private::ImageBytes bytes = reader.GetBytes(count * itemSize);
    return std::as_bytes(std::span(bytes.data(), bytes.size()));
}

void TakeTables(ImageReader& reader, std::uint32_t count, Strings& strings) {
    strings.offsets = Take(reader, count, sizeof(std::uint32_t));
    strings.lengths = Take(reader, count, sizeof(std::uint16_t));
}

}  // namespace

ImageReader ReaderOf(Bytes bytes) {
    const char* const begin = reinterpret_cast<const char*>(bytes.data());
    return {begin, begin + bytes.size(), lexon::EndianT::kHost};
}

void ThrowFault(const ImageReader& reader) {
    const ImageFault fault = reader.Fault();
    throw LoadFault{{.code = fault == ImageFault::kCutShort ? LoadError::Code::kCutShort
                             : fault == ImageFault::kUnknownVersion
                                 ? LoadError::Code::kUnsupportedVersion
                                 : LoadError::Code::kMalformed,
                     .offset = reader.FaultOffset(),
                     .reason = lexon_private::Describe(fault)}};
}

void ImageParts::ReadHead(ImageReader& reader) {
    lexon_private::PassMagic(reader);
    header = lexon_private::ReadBinaryHeader(reader);
    reader.Get<std::uint32_t>();  // the id base: an empty store treats any as 0
    keyed = reader.Get<std::uint8_t>() != lexon_private::kNotKeyed;
    entryCount = reader.Get<std::uint32_t>();
    liveCount = reader.Get<std::uint32_t>();
    slotCount = reader.Get<std::uint32_t>();
    const std::uint32_t keySize = keyed ? reader.Get<std::uint32_t>() : 0;
    const auto textSize = reader.Get<std::uint32_t>();
    if (keyed) TakeTables(reader, entryCount, keys);
    TakeTables(reader, entryCount, texts);
    if (keyed) keys.area = Take(reader, keySize, 1);
    texts.area = Take(reader, textSize, 1);
}

void ImageParts::ReadSlots(ImageReader& reader) {
    if (keyed) {
        lists.slots = Take(reader, slotCount, sizeof(std::uint16_t));
        lists.sizes = Take(reader, slotCount, sizeof(std::uint32_t));
        const bool swap = lexon_private::setEndian(header.order);
        std::uint64_t idCount = 0;
        for (std::size_t at = 0; at < lists.sizes.size(); at += sizeof(std::uint32_t)) {
            const auto size = LoadAt<std::uint32_t>(lists.sizes, at);
            idCount += swap ? lexon_private::ByteSwap(size) : size;
        }
        lists.ids = Take(reader, idCount, sizeof(std::uint32_t));
    }
    acceleratorsAt = reader.Offset();
}

void ImageParts::ReadAccelerators(ImageReader& reader) {
    acceleratorCount = reader.Get<std::uint32_t>();
    if (acceleratorCount == 0) return;
    const auto areaSize = reader.Get<std::uint32_t>();
    acceleratorEntries = Take(reader, acceleratorCount, sizeof(std::uint32_t));
    TakeTables(reader, acceleratorCount, accelerators);
    accelerators.area = Take(reader, areaSize, 1);
}

}  // namespace lexon::detail
