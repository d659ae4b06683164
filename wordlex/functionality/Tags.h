#pragma once
#include <cstddef>
#include <cstdint>

namespace lexon_private {

// Searches among tags that lie together, eight at a time, so that even a slot that holds every key
// of a hostile file is searched in bearable time.

// The first position from `from` on that has the tag, or `count`.
std::size_t FirstTag(const std::uint16_t* tags, std::size_t from, std::size_t count,
                     std::uint16_t tag) noexcept;
// The last position below `count` that has the tag, plus 1; or 0.
std::size_t BehindLastTag(const std::uint16_t* tags, std::size_t count, std::uint16_t tag) noexcept;

}  // namespace lexon_private
