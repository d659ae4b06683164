#include "wordlex/functionality/IdList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "wordlex/functionality/BinUtil.h"

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

std::uint16_t IdList::Tag(const unsigned char* key, unsigned long length) noexcept {
    if (length == 0) return kEmptyKey;
    const std::uint16_t tag = KeyTag(key, length);
    return tag > kNoKey ? tag : static_cast<std::uint16_t>(tag + kNoKey + 1);
}

std::uint32_t IdList::Find(std::uint16_t tag, std::uint32_t from) const noexcept {
    const std::uint16_t* const end = Tags() + count;
    const std::uint16_t* at = Tags() + from;
    while (end - at >= kBlock && !BlockHas(at, tag))
        at += kBlock;
    return static_cast<std::uint32_t>(std::find(at, end, tag) - Tags());
}

void IdList::Reserve(std::uint32_t more) {
    if (capacity - count >= more) return;
    IdList larger;
    larger.capacity = std::max(count + more, 2 * count);
    larger.block.reset(new std::byte[BlockSize(larger.capacity)]);
    if (count != 0) {
        std::memcpy(larger.block.get(), block.get(), count * sizeof(std::uint32_t));
        std::memcpy(larger.Tags(), Tags(), count * sizeof(std::uint16_t));
    }
    larger.count = count;
    *this = std::move(larger);
}

}  // namespace lexon_private
