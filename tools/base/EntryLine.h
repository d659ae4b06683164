#pragma once
// An entry written as a line of a text dictionary that reads back as the same entry.
#include <string_view>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// Whether the unit at `i` is one that an editor hides, or that another reader or UTF-8 would
// change: controls, marks of width and direction, line and paragraph separators, byte-order marks,
// lone surrogates.
bool IsHidden(Units value, std::size_t i);

// The value as an author would write it: what both passes of the conversion would take for an
// escape is escaped, and so is what a line of text cannot carry. Markers ("^1") stay as they are.
void AppendValue(std::vector<unsigned short>& line, Units value);
// A value that is written already, with escapes, made fit for a line: it converts to what `written`
// converts to. What a line can carry stays as it is written.
void AppendWritten(std::vector<unsigned short>& line, Units written);
// The key with "$$$" before it. A byte that would end the key, the entry or the line is written as
// the character 0x100 above it, of which the loader keeps the low byte.
void AppendKey(std::vector<unsigned short>& line, std::string_view key);
// The whole line, without its end.
std::vector<unsigned short> EntryLine(std::string_view key, Units value);

}  // namespace tool
