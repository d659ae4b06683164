#pragma once
// An entry as a line of a text dictionary that reads back as the same entry.
#include <string_view>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// Whether an editor hides the unit at `i`, or another reader or UTF-8 would change it: controls,
// marks of width and direction, line and paragraph separators, byte-order marks, lone surrogates.
bool IsHidden(Units value, std::size_t i);

// The value as an author would write it. Escapes what either pass of the conversion would take for
// an escape, and what a line of text cannot contain. Markers ("^1") stay as they are.
void AppendValue(std::vector<unsigned short>& line, Units value);
// Makes a value that is already written, with escapes, fit for a line. It converts to the same text
// as `written`. What a line can contain stays as written.
void AppendWritten(std::vector<unsigned short>& line, Units written);
// The key with "$$$" before it. A byte that would end the key, the entry or the line is written as
// the character 0x100 above it, of which the loader keeps the low byte.
void AppendKey(std::vector<unsigned short>& line, std::string_view key);
// The whole line, without its end.
std::vector<unsigned short> EntryLine(std::string_view key, Units value);

}  // namespace tool
