#pragma once
#include <optional>
#include <string>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// A part that the application replaces by a text, or should.
struct Placeholder {
    std::string name;   // "^1", the name of a parameter tag, or the placeholder itself
    std::size_t begin;  // units of the converted text
    std::size_t end;
};

// "^0" to "^9", in the order of the text.
std::vector<Placeholder> Markers(Units text);
// The tags that the string class takes for parameters, in the order of the text.
std::vector<Placeholder> Parameters(const Text& text);
// What a translator wrote for the marker: "%1", "$1", "^ 1" or "^" with a full-width digit.
std::optional<Placeholder> MisspeltMarker(Units text, const std::string& marker);
// Placeholders of other systems: {name}, ${name}, %d, %1$s, %@, &amp;.
std::vector<Placeholder> ForeignPlaceholders(Units text);

// Moves past a marker or a parameter tag at `i`, which are not text.
bool PassPlaceholder(Units text, std::size_t& i);
// Whether the text has letters outside markers and parameter tags.
bool HasLetters(Units text);

// The length of the HTML entity at `i` ("&amp;", "&#39;"), or 0.
std::size_t HtmlEntityAt(Units text, std::size_t i);

}  // namespace tool
