#pragma once
#include <cstdint>
#include <cstring>
#include <memory_resource>

#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/Table.h"

namespace lexon_private {

// Numbered strings of one array of a compact store: bytes of keys, or UTF-16 units of texts.
// Strings from an image lie packed in one area, where they may share bytes; one that is added at
// run time or has outgrown its place lies in a buffer of its own.
//
// Units:     lengths and offsets are bytes. Lengths of texts are even.
// Invariant: every string lies inside its area or buffer, at an address right for its units:
//            whoever reads one need not check. What is written in place is part of no other string.
// Cost:      strings that share bytes may sum up to sixteen times what was read of them, so that no
//            image costs much more than its size; with more than that an image is refused.
template <class Unit>
class PackedRuns {
public:
    using Run = BorrowableArray<Unit>;

    // The part of `byteCount` that a length of 16 bits can tell: longer strings are cut.
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
    // Replaces string i in two steps, of which the first does all that can fail: a string that
    // grows or leaves a shared place is prepared in a buffer of its own, any other overwrites the
    // old one. `bytes` may be part of what is replaced.
    Run PrepareReplace(std::size_t i, const void* bytes, std::uint16_t byteCount);
    void Replace(std::size_t i, Run prepared, const void* bytes, std::uint16_t byteCount) noexcept;

    // Read the two tables of `count` strings, then later the area that they describe. Every string
    // is checked against the area's size; `outside` is the fault of one that leaves it.
    void ReadTables(ImageReader& reader, std::uint32_t count, std::uint32_t areaSize,
                    ImageFault outside);
    void ReadArea(ImageReader& reader, std::uint32_t areaSize);

private:
    // Whether the string may have bytes in common with others.
    bool IsShared(std::size_t i) const noexcept {
        return areaIsShared && (buffers.empty() || buffers[i] == nullptr);
    }
    // Gives each text at an odd offset a buffer of its own.
    void AlignTexts();

    Table<std::uint32_t> offsets;  // absent in arrays that were not read
    Table<std::uint16_t> lengths;
    Table<Unit> area;
    bool areaIsShared = false;  // whether the strings of the area may have bytes in common
    Table<Run> buffers;  // absent until a string needs one; null where a string lies in the area
};

extern template class PackedRuns<unsigned char>;
extern template class PackedRuns<unsigned short>;

}  // namespace lexon_private
