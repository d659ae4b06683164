#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "wordlex/functionality/Buffer.h"
#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

// Splits input into lines. Reads ahead in blocks, because each read costs a system call.
template <class Unit>
class LineSplitter {
public:
    // The next line without the unit that ended it, which is one of `ends`; none at the end of the
    // input. A unit 0 ends the input for good. The line is valid until the next call. The caller
    // may change its units and one more after them. It is in the block, or in `crossing` when it
    // crosses blocks. fill(units, count) reads up to `count` units and returns their number.
    template <class Fill, class... Ends>
    std::optional<std::span<Unit>> Next(Buffer<Unit>& crossing, Fill fill, Ends... ends) {
        crossing.SetLength(0);
        while (!ended) {
            if (cursor == length) {
                cursor = 0;
                length = fill(block.data(), block.size());
                if (length == 0) break;
            }
            Unit* const begin = block.data() + cursor;
            const Unit* const end = block.data() + length;
            const auto count =
                static_cast<std::size_t>(FindUnit<Unit>(begin, end, 0, ends...) - begin);
            const Unit* const stop = begin + count;
            const std::size_t passed = count + (stop == end ? 0 : 1);
            cursor += passed;
            taken += passed;
            const bool endsLine = stop != end && *stop != 0;
            if (endsLine && crossing.GetLength() == 0) return std::span(begin, count);
            crossing.Append(begin, count);
            if (endsLine) return Whole(crossing);
            ended = stop != end;
        }
        if (crossing.GetLength() == 0) return std::nullopt;
        return Whole(crossing);
    }

    // Units used so far: through the end of the latest line, or through the 0 that ended the input.
    std::uint64_t Taken() const noexcept { return taken; }

private:
    static constexpr std::size_t kBlockBytes = 0x10000;

    static std::span<Unit> Whole(Buffer<Unit>& crossing) {
        crossing.Reserve(crossing.GetLength() + 1);
        return {crossing.GetData(), crossing.GetLength()};
    }

    std::array<Unit, kBlockBytes / sizeof(Unit)> block;
    std::size_t cursor = 0;
    std::size_t length = 0;
    std::uint64_t taken = 0;
    bool ended = false;  // by a 0
};

}  // namespace lexon_private
