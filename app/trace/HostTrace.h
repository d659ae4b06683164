#pragma once
// The output of --trace. It goes to standard error, so that standard output stays the application's
// text.

#include <string_view>

namespace trace {

// What the host contains at this moment; `when` heads the lines.
void PrintHost(std::string_view when);

// Every host event so far, with its time since the first event, then the timing marks.
void PrintHistory();

}  // namespace trace
