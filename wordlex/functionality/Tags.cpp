#include "wordlex/functionality/Tags.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace lexon_private {

namespace {

// Eight tags in a vector register: GCC and Clang turn plain operators into vector instructions.
using Lanes = std::uint16_t __attribute__((vector_size(16)));
constexpr std::ptrdiff_t kLanes = sizeof(Lanes) / sizeof(std::uint16_t);
constexpr std::ptrdiff_t kStride = 4;  // registers at a time, until the tag is near

template <std::size_t Registers>
bool BlockHas(const std::uint16_t* tags, std::uint16_t tag) noexcept {
    std::array<Lanes, Registers> block;
    std::memcpy(block.data(), tags, sizeof block);
    auto hits = block[0] == tag;
    for (std::size_t r = 1; r < Registers; ++r)
        hits |= block[r] == tag;
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(hits);
    return (halves[0] | halves[1]) != 0;
}

template <std::size_t Registers>
const std::uint16_t* SkipBlocks(const std::uint16_t* at, const std::uint16_t* end,
                                std::uint16_t tag) noexcept {
    constexpr std::ptrdiff_t kBlock = Registers * kLanes;
    while (end - at >= kBlock && !BlockHas<Registers>(at, tag))
        at += kBlock;
    return at;
}

template <std::size_t Registers>
const std::uint16_t* SkipBlocksBack(const std::uint16_t* begin, const std::uint16_t* end,
                                    std::uint16_t tag) noexcept {
    constexpr std::ptrdiff_t kBlock = Registers * kLanes;
    while (end - begin >= kBlock && !BlockHas<Registers>(end - kBlock, tag))
        end -= kBlock;
    return end;
}

}  // namespace

std::size_t FirstTag(const std::uint16_t* tags, std::size_t from, std::size_t count,
                     std::uint16_t tag) noexcept {
    const std::uint16_t* const end = tags + count;
    const std::uint16_t* const near = SkipBlocks<kStride>(tags + from, end, tag);
    return static_cast<std::size_t>(std::find(SkipBlocks<1>(near, end, tag), end, tag) - tags);
}

std::size_t BehindLastTag(const std::uint16_t* tags, std::size_t count,
                          std::uint16_t tag) noexcept {
    const std::uint16_t* end = SkipBlocksBack<kStride>(tags, tags + count, tag);
    end = SkipBlocksBack<1>(tags, end, tag);
    while (end != tags && end[-1] != tag)
        --end;
    return static_cast<std::size_t>(end - tags);
}

}  // namespace lexon_private
