#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "wordlex/catalog/Bytes.h"

namespace lexon::detail {

// Numbered strings: a table of 32-bit offsets, one of lengths in bytes, and the area for both.
struct Strings {
    Bytes offsets;
    Bytes lengths;
    std::size_t lengthSize = sizeof(std::uint16_t);  // of a number in `lengths`: 2 or 4
    Bytes area;

    // For each member, `i` must be below the number of strings.
    std::uint32_t Length(std::uint32_t i) const noexcept {
        return lengthSize == sizeof(std::uint16_t) ? ItemAt<std::uint16_t>(lengths, i)
                                                   : ItemAt<std::uint32_t>(lengths, i);
    }
    std::uint32_t Offset(std::uint32_t i) const noexcept {
        return ItemAt<std::uint32_t>(offsets, i);
    }
    // For unchecked tables.
    std::optional<Bytes> At(std::uint32_t i) const noexcept {
        return Part(area, Offset(i), Length(i));
    }
    // For checked tables.
    Bytes Inside(std::uint32_t i) const noexcept { return area.subspan(Offset(i), Length(i)); }
};

inline std::string_view Characters(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace lexon::detail
