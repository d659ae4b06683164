#pragma once
// What --trace shows, on standard error so that standard output stays the application's text.

#include <string_view>

namespace trace {

// What the host holds at this moment; `when` heads the lines.
void PrintHost(std::string_view when);

// Everything that the host saw so far, with times since the first event, then the timing marks.
void PrintHistory();

}  // namespace trace
