#pragma once
#include <cstdint>
#include <cstring>
#include <memory_resource>

#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/Table.h"

namespace lexon_private {

// Numbered strings of one array of a compact store: bytes of keys, or UTF-16 units of texts.
// Strings from an image are packed in one area, where they may share bytes. A string that is added
// at run time or has outgrown its place is in a buffer of its own.
//
// Units:     lengths and offsets are bytes. Lengths of texts are even.
// Invariant: every string is inside its area or buffer, at an address aligned for its units, so
//            readers need not check. Bytes that are written in place are part of no other string.
// Cost:      strings that share bytes may add up to sixteen times the bytes read for them, so that
//            no image costs much more than its size. An image with more is refused.
template <class Unit>
class PackedRuns {
public:
    using Run = BorrowableArray<Unit>;

    // The part of `byteCount` that a length of 16 bits can express: longer strings are cut.
    static std::uint16_t StoredLength(unsigned long byteCount) noexcept {
        return static_cast<std::uint16_t>(byteCount / sizeof(Unit) * sizeof(Unit));
    }
    // A copy in a buffer of its own; null when there is nothing to copy.
    static Run Copy(const void* bytes, std::uint16_t byteCount) {
        if (byteCount == 0) return nullptr;
        Run run(new Unit[byteCount / sizeof(Unit)]);
        std::memcpy(run.get(), bytes, byteCount);
        return run;
    }
    // The same in a pool that outlives the copy.
    static Run Copy(const void* bytes, std::uint16_t byteCount, std::pmr::memory_resource& pool) {
        if (byteCount == 0) return nullptr;
        void* const place = pool.allocate(byteCount, alignof(Unit));
        return Run(static_cast<Unit*>(std::memcpy(place, bytes, byteCount)), {.borrowed = true});
    }

    std::uint16_t Length(std::size_t i) const noexcept { return lengths[i]; }
    // Not terminated; may be null when the length is 0.
    const Unit* Data(std::size_t i) const noexcept {
        if (!buffers.empty() && buffers[i] != nullptr) return buffers[i].get();
        return offsets.empty() ? nullptr : area.data() + offsets[i] / sizeof(Unit);
    }

    // Makes `count` empty strings without an area.
    void MakeEmpty(std::size_t count);
    // Sets a string that has no place in the area.
    void Put(std::size_t i, Run run, std::uint16_t byteCount) noexcept {
        buffers[i] = std::move(run);
        lengths[i] = byteCount;
    }
    void Clear(std::size_t i) noexcept { lengths[i] = 0; }
    // Replaces string i in two steps; only the first can fail. A string that grows or leaves a
    // shared place is prepared in a buffer of its own, any other overwrites the old one. `bytes`
    // may be part of the old string.
    Run PrepareReplace(std::size_t i, const void* bytes, std::uint16_t byteCount);
    void Replace(std::size_t i, Run prepared, const void* bytes, std::uint16_t byteCount) noexcept;

    // Read the two tables of `count` strings, then later the area for them. Every string is checked
    // against the area's size; `outside` is the fault for one that leaves it.
    void ReadTables(ImageReader& reader, std::uint32_t count, std::uint32_t areaSize,
                    ImageFault outside);
    void ReadArea(ImageReader& reader, std::uint32_t areaSize);

private:
    // Whether the string may share bytes with others.
    bool IsShared(std::size_t i) const noexcept {
        return areaIsShared && (buffers.empty() || buffers[i] == nullptr);
    }
    // Moves each text at an odd offset to a buffer of its own.
    void AlignTexts();

    Table<std::uint32_t> offsets;  // absent in arrays that were not read
    Table<std::uint16_t> lengths;
    Table<Unit> area;
    bool areaIsShared = false;  // whether strings of the area may share bytes
    Table<Run> buffers;         // absent until a string needs one; null for a string in the area
};

extern template class PackedRuns<unsigned char>;
extern template class PackedRuns<unsigned short>;

}  // namespace lexon_private
