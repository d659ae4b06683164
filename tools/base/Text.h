#pragma once
// Conversions between the library's UTF-16 and the command's UTF-8.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "wordlex/functionality/Wordlex.h"

namespace tool {

// The library's string, compared by its units.
using Text = lexon_private::Wordlex;
using Units = std::span<const unsigned short>;

inline Units UnitsOf(const lexon_private::UnicodeRun& text) {
    return {text.GetData(), text.GetLength()};
}

void AppendUtf8(std::string& bytes, char32_t code);
// An unpaired surrogate, which UTF-8 lacks, becomes '?'.
std::string Utf8(Units units);
Text FromUtf8(std::string_view text);

// The string class's parameter substitution, for a tag name in UTF-8 whatever the default encoding.
bool SubstituteParameter(Text& text, const std::string& name, const Text& value);

// Whether the surrogate at `i`, if it is one, lacks its other half.
bool IsUnpairedSurrogate(Units units, std::size_t i);
// The first unpaired surrogate, or the length.
std::size_t FindUnpairedSurrogate(Units units);
// Whether the unit at `i` belongs to the one before it: a surrogate pair is one character.
bool IsSecondHalf(Units units, std::size_t i);
// Returns the character at `i` and moves `i` past it. Returns an unpaired surrogate as it is.
char32_t NextCharacter(Units units, std::size_t& i);

// "1 byte", "2 bytes"; `things` is the plural where it has another form than that.
std::string Counted(std::size_t count, const std::string& thing, const std::string& things = {});

// "U+00E9"
std::string CodePoint(unsigned short unit);
// A text as it is, in quotation marks; control characters escaped.
std::string ShowRaw(Units units);
// The same for the bytes of a key: each is the character with the same number.
std::string ShowKey(std::string_view key);
// A text on one line, as its author would write it, in quotation marks.
std::string Show(Units units);

}  // namespace tool
