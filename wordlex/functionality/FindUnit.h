#pragma once
#include <array>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lexon_private {

// Sixteen bytes of units, all compared at once: GCC and Clang compile plain operators on vectors to
// vector instructions.
template <class Unit>
class UnitBlock {
public:
    static constexpr std::ptrdiff_t kUnits = 16 / sizeof(Unit);

    // Finds the units that equal one of `wanted`.
    template <class... Wanted>
    explicit UnitBlock(const Unit* units, Wanted... wanted) noexcept {
        Lanes lanes;
        std::memcpy(&lanes, units, sizeof lanes);
        equal = (... | (lanes == static_cast<Unit>(wanted)));
    }
    bool HasAny() const noexcept { return (Half(0) | Half(1)) != 0; }
    // The first one found; there must be one.
    std::ptrdiff_t First() const noexcept {
        return Half(0) != 0 ? UnitsIn(LeadingZeros(Half(0)))
                            : kUnits / 2 + UnitsIn(LeadingZeros(Half(1)));
    }

private:
    typedef Unit Lanes __attribute__((vector_size(16)));
    using Equal = decltype(Lanes{} == Lanes{});

    static constexpr bool kLittle = std::endian::native == std::endian::little;

    // The number of zeros before the first one, in the order of memory.
    static int LeadingZeros(std::uint64_t half) noexcept {
        return kLittle ? std::countr_zero(half) : std::countl_zero(half);
    }
    static std::ptrdiff_t UnitsIn(int bits) noexcept {
        return bits / static_cast<int>(CHAR_BIT * sizeof(Unit));
    }

    std::uint64_t Half(std::size_t which) const noexcept {
        return std::bit_cast<std::array<std::uint64_t, 2>>(equal)[which];
    }

    Equal equal;  // all bits set in a unit that is found, none in others
};

// The first of the units of [begin, end) that equals one of `wanted`, or `end`. Loading scans texts
// for marks, ends and escapes again and again. Compilers do not vectorize a loop that ends early;
// docs/performance.md has the gain.
template <class Unit, class... Wanted>
const Unit* FindUnit(const Unit* begin, const Unit* end, Wanted... wanted) noexcept {
    using Block = UnitBlock<Unit>;
    const bool hasBlock = end - begin >= Block::kUnits;
    for (; end - begin >= Block::kUnits; begin += Block::kUnits) {
        const Block block(begin, wanted...);
        if (block.HasAny()) return begin + block.First();
    }
    if (hasBlock && begin != end) {  // the rest, in one block with units that do not match
        const Unit* const last = end - Block::kUnits;
        const Block block(last, wanted...);
        return block.HasAny() ? last + block.First() : end;
    }
    while (begin != end && !(... || (*begin == static_cast<Unit>(wanted))))
        ++begin;
    return begin;
}

}  // namespace lexon_private
