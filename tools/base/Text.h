#pragma once
// Text on its way between the library's UTF-16 and the command's UTF-8.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "wordlex/functionality/Wordlex.h"

namespace tool {

// A text of the library's, compared by its units.
using Text = lexon_private::Wordlex;
using Units = std::span<const unsigned short>;

inline Units UnitsOf(const lexon_private::UnicodeRun& text) {
    return {text.GetData(), text.GetLength()};
}

// An unpaired surrogate, which UTF-8 cannot hold, becomes '?'.
std::string Utf8(Units units);
Text FromUtf8(std::string_view text);

// The string class's parameter substitution, for a tag name in UTF-8 whatever the default encoding.
bool SubstituteParameter(Text& text, const std::string& name, const Text& value);

// Whether the surrogate at `i`, if it is one, lacks its other half.
bool IsUnpairedSurrogate(Units units, std::size_t i);
// The first unpaired surrogate, or the length.
std::size_t FindUnpairedSurrogate(Units units);
// Whether the unit at `i` goes with the one before it: a surrogate pair is one character.
bool IsSecondHalf(Units units, std::size_t i);

// "U+00E9"
std::string CodePoint(unsigned short unit);
// A text as it stands, in quotation marks; control characters escaped.
std::string ShowRaw(Units units);
// The bytes of a key in the same way: each is the character of the same number.
std::string ShowKey(std::string_view key);
// A text in one line: the way its author would write it, in quotation marks.
std::string Show(Units units);

}  // namespace tool
