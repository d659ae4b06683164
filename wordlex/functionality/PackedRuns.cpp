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
    if (byteCount <= lengths[i]) return nullptr;
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

    std::uint64_t sum = 0;
    const auto leavesArea = [&](std::uint32_t i) {
        sum += lengths[i];
        return (std::uint64_t{offsets[i]} + lengths[i] > areaSize) | (sum > areaSize);
    };
    bool bad = false;
    for (std::uint32_t i = 0; i < count; ++i)
        bad |= leavesArea(i);
    if (!bad) return;
    sum = 0;
    std::uint32_t first = 0;
    while (!leavesArea(first))
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
    const auto isOdd = [](std::uint32_t offset) { return offset % sizeof(Unit) != 0; };
    if (std::none_of(offsets.begin(), offsets.end(), isOdd)) return;
    buffers = Table<Run>(lengths.size());
    const auto* const bytes = reinterpret_cast<const unsigned char*>(area.data());
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        if (isOdd(offsets[i])) buffers[i] = Copy(bytes + offsets[i], lengths[i]);
    }
}

template class PackedRuns<unsigned char>;
template class PackedRuns<unsigned short>;

}  // namespace lexon_private
