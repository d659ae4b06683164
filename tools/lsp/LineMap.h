#pragma once
#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/base/Json.h"
#include "tools/base/Text.h"

namespace tool::lsp {

// The protocol's position: lines from 0, characters as UTF-16 units from 0.
struct Position {
    std::size_t line = 0;
    std::size_t character = 0;
    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 takes the comparison for a null pointer
    auto operator<=>(const Position&) const = default;
};

// The end is exclusive.
struct Range {
    Position start;
    Position end;
};

Json ToJson(const Range& range);
// Throw a Json exception for an invalid one.
Position PositionFrom(const Json& position);
Range RangeFrom(const Json& range);

// Converts between lines of the loader and those of the protocol. In UTF-16 the loader also ends a
// line at U+2028 and U+2029. In all other files the lines are the same.
class LineMap {
public:
    // For a file in which they are the same.
    LineMap() = default;
    // For a file in UTF-16.
    explicit LineMap(Units text);

    // `number` counts from 1; `unit` is a unit of that line.
    Position ToEditor(std::uint64_t number, std::size_t unit) const;
    struct Spot {
        std::uint64_t number;
        std::size_t unit;
    };
    Spot FromEditor(Position position) const;

private:
    std::vector<Position> starts;  // of the loader's lines
};

}  // namespace tool::lsp
