#pragma once
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The number of letters to insert, remove, replace or swap with their neighbour to turn one word
// into the other. Case is ignored. Stops at `limit`.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit);

// The known word most similar to the misspelt one, or "" when none is near: at most two edits away,
// and at most one for each three letters.
std::string Nearest(std::string_view word, std::span<const std::string> known);

// "; did you mean "X"?", or "" when no known word is near.
std::string DidYouMean(std::string_view word, std::span<const std::string> known);

}  // namespace tool
