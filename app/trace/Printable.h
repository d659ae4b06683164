#pragma once

#include <string>
#include <string_view>

namespace trace {

// A text that may come from anywhere, as part of one line that shows all of it. Each byte of a
// control character, a line separator, an invisible or direction mark, and each byte that is not
// part of UTF-8, becomes "\x" and two hexadecimal digits. A backslash is doubled.
std::string Printable(std::string_view text);

}  // namespace trace
