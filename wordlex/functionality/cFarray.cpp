#include "wordlex/functionality/cFarray.h"

namespace lexon_private {

std::uint32_t cFarray::getAccelIndex(std::uint32_t entry) const noexcept {
    // Binary search by hand: std::lower_bound needs ascending items, which images may not have.
    std::uint32_t low = 0;
    for (std::uint32_t high = acceleratorCount; low < high;) {
        const std::uint32_t middle = low + (high - low) / 2;
        if (acceleratorEntries[middle] < entry) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < acceleratorCount && acceleratorEntries[low] == entry ? low : acceleratorCount;
}

void cFarray::MakeEmpty(std::uint32_t room) {
    keys.MakeEmpty(room);
    values.MakeEmpty(room);
    slotNumbers = Table<std::uint16_t>(room);
}

void cFarray::PrepareAccelerators(std::uint32_t room) {
    if (!acceleratorEntries.empty()) return;
    accelerators.MakeEmpty(room);
    acceleratorEntries = Table<std::uint32_t>(room);
}

void cFarray::AddAccelerator(std::uint32_t entry, PackedRuns<unsigned short>::Run text,
                             std::uint16_t byteCount) noexcept {
    acceleratorEntries[acceleratorCount] = entry;
    accelerators.Put(acceleratorCount, std::move(text), byteCount);
    ++acceleratorCount;
}

void cFarray::Kill(std::uint32_t entry) noexcept {
    keys.Clear(entry);
    values.Clear(entry);
    const std::uint32_t index = getAccelIndex(entry);
    if (index != acceleratorCount) accelerators.Clear(index);
}

}  // namespace lexon_private
