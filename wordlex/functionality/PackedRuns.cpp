#include "wordlex/functionality/PackedRuns.h"

#include <algorithm>

namespace lexon_private {

template <class Unit>
void PackedRuns<Unit>::MakeEmpty(std::size_t count) {
    Table<std::uint16_t> none(count);
    std::fill(none.begin(), none.end(), std::uint16_t{0});
    buffers = Table<Run>(count);
    lengths = std::move(none);
}

template <class Unit>
typename PackedRuns<Unit>::Run PackedRuns<Unit>::PrepareReplace(std::size_t i, const void* bytes,
                                                                std::uint16_t byteCount) {
    const bool lonePlace = !mayShare || (!buffers.empty() && buffers[i] != nullptr);
    if (byteCount <= lengths[i] && lonePlace) return nullptr;
    if (buffers.empty()) buffers = Table<Run>(lengths.size());
    return Copy(bytes, byteCount);
}

template <class Unit>
void PackedRuns<Unit>::Replace(std::size_t i, Run prepared, const void* bytes,
                               std::uint16_t byteCount) noexcept {
    if (prepared != nullptr) {
        buffers[i] = std::move(prepared);
    } else if (byteCount != 0) {
        std::memmove(const_cast<Unit*>(Data(i)), bytes, byteCount);
    }
    lengths[i] = byteCount;
}

template <class Unit>
void PackedRuns<Unit>::ReadTables(ImageReader& reader, std::uint32_t count, std::uint32_t areaSize,
                                  ImageFault outside) {
    const std::uint64_t offsetsAt = reader.Offset();
    offsets = reader.GetTable<std::uint32_t>(count);
    lengths = reader.GetTable<std::uint16_t>(count);
    if (!reader.Ok()) return;

    const auto end = [this](std::uint32_t i) { return std::uint64_t{offsets[i]} + lengths[i]; };
    bool bad = false;
    for (std::uint32_t i = 0; i < count; ++i)
        bad |= end(i) > areaSize;
    std::uint32_t lonely = 1;  // strings that begin behind those ahead of them
    while (lonely < count && end(lonely - 1) <= offsets[lonely])
        ++lonely;
    mayShare = lonely < count;
    if (!bad) return;
    std::uint32_t first = 0;
    while (end(first) <= areaSize)
        ++first;
    reader.Reject(outside, offsetsAt + std::uint64_t{first} * sizeof(std::uint32_t));
}

template <class Unit>
void PackedRuns<Unit>::ReadArea(ImageReader& reader, std::uint32_t areaSize) {
    area = reader.GetArea<Unit>(areaSize);
    if constexpr (sizeof(Unit) == 1) return;
    if (!reader.Ok()) return;
    for (std::uint16_t& length : lengths)
        length = StoredLength(length);
    if (std::all_of(offsets.begin(), offsets.end(), IsAligned)) return;
    areaFromByteOne = Table<Unit>((areaSize - 1) / sizeof(Unit));
    std::memcpy(areaFromByteOne.data(), reinterpret_cast<const unsigned char*>(area.data()) + 1,
                areaFromByteOne.size() * sizeof(Unit));
}

template class PackedRuns<unsigned char>;
template class PackedRuns<unsigned short>;

}  // namespace lexon_private
