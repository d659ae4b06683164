#include "wordlex/functionality/Tags.h"

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

namespace {

using Block = UnitBlock<std::uint16_t>;

// Long slots are passed over four blocks at a time, until the tag or the end is near.
constexpr std::ptrdiff_t kStride = 4 * Block::kUnits;
constexpr std::ptrdiff_t kNear = 16 * Block::kUnits;

bool StrideHas(const std::uint16_t* tags, std::uint16_t tag) noexcept {
    const auto has = [=](std::ptrdiff_t block) {
        return static_cast<int>(Block(tags + block * Block::kUnits, tag).HasAny());
    };
    return (has(0) | has(1) | has(2) | has(3)) != 0;  // one branch for all
}

}  // namespace

std::size_t FirstTag(const std::uint16_t* tags, std::size_t from, std::size_t count,
                     std::uint16_t tag) noexcept {
    const std::uint16_t* const end = tags + count;
    const std::uint16_t* at = tags + from;
    while (end - at > kNear && !StrideHas(at, tag))
        at += kStride;
    return static_cast<std::size_t>(FindUnit(at, end, tag) - tags);
}

std::size_t BehindLastTag(const std::uint16_t* tags, std::size_t count,
                          std::uint16_t tag) noexcept {
    const std::uint16_t* end = tags + count;
    while (end - tags > kNear && !StrideHas(end - kStride, tag))
        end -= kStride;
    const bool hasBlock = end - tags >= Block::kUnits;
    for (; end - tags >= Block::kUnits; end -= Block::kUnits) {
        const Block block(end - Block::kUnits, tag);
        if (block.HasAny())
            return static_cast<std::size_t>(end - Block::kUnits - tags + block.Last()) + 1;
    }
    if (hasBlock && end != tags) {  // the rest in one block with tags that are others
        const Block block(tags, tag);
        return block.HasAny() ? static_cast<std::size_t>(block.Last()) + 1 : 0;
    }
    while (end != tags && end[-1] != tag)
        --end;
    return static_cast<std::size_t>(end - tags);
}

}  // namespace lexon_private
