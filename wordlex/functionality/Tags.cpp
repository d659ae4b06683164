#include "wordlex/functionality/Tags.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace lexon_private {

namespace {

// Eight tags in a vector register: GCC and Clang turn plain operators into vector instructions.
using Lanes = std::uint16_t __attribute__((vector_size(16)));
constexpr std::ptrdiff_t kBlock = 2 * sizeof(Lanes) / sizeof(std::uint16_t);

bool BlockHas(const std::uint16_t* tags, std::uint16_t tag) noexcept {
    std::array<Lanes, 2> block;
    std::memcpy(block.data(), tags, sizeof block);
    const auto hits = (block[0] == tag) | (block[1] == tag);
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(hits);
    return (halves[0] | halves[1]) != 0;
}

}  // namespace

std::size_t FirstTag(const std::uint16_t* tags, std::size_t from, std::size_t count,
                     std::uint16_t tag) noexcept {
    const std::uint16_t* at = tags + from;
    const std::uint16_t* const end = tags + count;
    while (end - at >= kBlock && !BlockHas(at, tag))
        at += kBlock;
    return static_cast<std::size_t>(std::find(at, end, tag) - tags);
}

std::size_t BehindLastTag(const std::uint16_t* tags, std::size_t count,
                          std::uint16_t tag) noexcept {
    const std::uint16_t* end = tags + count;
    while (end - tags >= kBlock && !BlockHas(end - kBlock, tag))
        end -= kBlock;
    while (end != tags && end[-1] != tag)
        --end;
    return static_cast<std::size_t>(end - tags);
}

}  // namespace lexon_private
