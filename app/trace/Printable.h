#pragma once

#include <string>

namespace trace {

// A text that may come from anywhere, as part of one line: control characters become "\x0A", and in
// a text that is not UTF-8 every byte above 0x7F does, too.
std::string Printable(const std::string& text);

}  // namespace trace
