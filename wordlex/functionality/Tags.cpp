#include "wordlex/functionality/Tags.h"

#include <algorithm>
#include <bit>

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

namespace {

using Block = UnitBlock<std::uint16_t>;

// Long ranges are passed over four blocks at a time, until the tag or the end is near.
constexpr std::ptrdiff_t kStride = 4 * Block::kUnits;
constexpr std::ptrdiff_t kNear = 16 * Block::kUnits;

bool StrideHas(const std::uint16_t* tags, std::uint16_t tag) noexcept {
    const auto block = [=](std::ptrdiff_t i) { return Block(tags + i * Block::kUnits, tag); };
    return (block(0) | block(1) | block(2) | block(3)).HasAny();
}

// Search [begin, end) from either side; `end`, or null, when the tag is not there.

const std::uint16_t* FindTag(const std::uint16_t* begin, const std::uint16_t* end,
                             std::uint16_t tag) noexcept {
    while (end - begin > kNear && !StrideHas(begin, tag))
        begin += kStride;
    return FindUnit(begin, end, tag);
}

const std::uint16_t* FindLastTag(const std::uint16_t* begin, const std::uint16_t* end,
                                 std::uint16_t tag) noexcept {
    while (end - begin > kNear && !StrideHas(end - kStride, tag))
        end -= kStride;
    const bool hasBlock = end - begin >= Block::kUnits;
    for (; end - begin >= Block::kUnits; end -= Block::kUnits) {
        const Block block(end - Block::kUnits, tag);
        if (block.HasAny()) return end - Block::kUnits + block.Last();
    }
    if (hasBlock && end != begin) {  // the rest in one block with tags that are others
        const Block block(begin, tag);
        return block.HasAny() ? begin + block.Last() : nullptr;
    }
    while (end != begin) {
        if (*--end == tag) return end;
    }
    return nullptr;
}

}  // namespace

Tags::Parts* Tags::Map() const noexcept {
    std::byte* const behind = units + capacity * sizeof(std::uint16_t);
    const std::uintptr_t padding = -reinterpret_cast<std::uintptr_t>(behind) % alignof(Parts);
    return reinterpret_cast<Parts*>(behind + padding);
}

std::size_t Tags::First(std::size_t from, std::size_t count, std::uint16_t tag) const noexcept {
    const std::uint16_t* const tags = Units();
    if (!IsMapped())
        return static_cast<std::size_t>(FindTag(tags + from, tags + count, tag) - tags);
    for (Parts parts = Map()[tag]; parts != 0; parts &= parts - 1) {
        const std::size_t part = static_cast<std::size_t>(std::countr_zero(parts)) * PartSize();
        const std::size_t begin = std::max(part, from);
        const std::size_t end = std::min(part + PartSize(), count);
        if (begin >= end) continue;
        const std::uint16_t* const found = FindTag(tags + begin, tags + end, tag);
        if (found != tags + end) return static_cast<std::size_t>(found - tags);
    }
    return count;
}

std::size_t Tags::BehindLast(std::size_t count, std::uint16_t tag) const noexcept {
    const std::uint16_t* const tags = Units();
    const auto behind = [tags](const std::uint16_t* found) {
        return found == nullptr ? 0 : static_cast<std::size_t>(found - tags) + 1;
    };
    if (!IsMapped()) return behind(FindLastTag(tags, tags + count, tag));
    for (Parts parts = Map()[tag]; parts != 0;) {
        const auto highest = static_cast<std::size_t>(std::bit_width(parts)) - 1;
        parts ^= Parts{1} << highest;
        const std::size_t begin = std::min(highest * PartSize(), count);
        const std::size_t end = std::min(begin + PartSize(), count);
        const std::size_t found = behind(FindLastTag(tags + begin, tags + end, tag));
        if (found != 0) return found;
    }
    return 0;
}

}  // namespace lexon_private
