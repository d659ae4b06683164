#include "wordlex/functionality/PackedRuns.h"

#include <algorithm>
#include <numeric>

namespace lexon_private {

namespace {

constexpr std::uint64_t kMostSharing = 16;  // of what was read

}  // namespace

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
    if (byteCount <= lengths[i] && !IsShared(i)) return nullptr;
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
    std::uint64_t farthest = 0;
    bool shared = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        shared |= i != 0 && end(i - 1) > offsets[i];
        farthest = std::max(farthest, end(i));
    }
    areaIsShared = shared;
    if (farthest <= areaSize) return;
    std::uint32_t first = 0;
    while (end(first) <= areaSize)
        ++first;
    reader.Reject(outside, offsetsAt + std::uint64_t{first} * sizeof(std::uint32_t));
}

template <class Unit>
void PackedRuns<Unit>::ReadArea(ImageReader& reader, std::uint32_t areaSize) {
    const std::uint64_t areaAt = reader.Offset();
    area = reader.GetArea<Unit>(areaSize);
    const std::uint64_t length = std::accumulate(lengths.begin(), lengths.end(), std::uint64_t{0});
    const std::uint64_t read =
        areaSize + std::uint64_t{lengths.size()} * (sizeof offsets[0] + sizeof lengths[0]);
    if (length > kMostSharing * read) reader.Reject(ImageFault::kTooMuchSharing, areaAt);
    if (reader.Ok() && sizeof(Unit) != 1) AlignTexts();
}

template <class Unit>
void PackedRuns<Unit>::AlignTexts() {
    for (std::uint16_t& length : lengths)
        length = StoredLength(length);
    const auto isOdd = [](std::uint32_t offset) { return offset % sizeof(Unit) != 0; };
    if (std::none_of(offsets.begin(), offsets.end(), isOdd)) return;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        if (!isOdd(offsets[i])) continue;
        if (buffers.empty()) buffers = Table<Run>(lengths.size());
        const auto* const bytes = reinterpret_cast<const unsigned char*>(area.data());
        buffers[i] = Copy(bytes + offsets[i], lengths[i]);
    }
}

template class PackedRuns<unsigned char>;
template class PackedRuns<unsigned short>;

}  // namespace lexon_private
