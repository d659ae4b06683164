#pragma once
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The number of letters to insert, remove, replace or swap with their neighbour that make one word
// of the other; upper and lower case count as the same letter. Stops at `limit`.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit);

// The known word that is most like the misspelt one, or "" when none is near: two edits away, and
// one for each three letters.
std::string Nearest(std::string_view word, std::span<const std::string> known);

// "; did you mean "X"?", or "" when no known word is near.
std::string DidYouMean(std::string_view word, std::span<const std::string> known);

}  // namespace tool
