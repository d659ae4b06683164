#pragma once

#include <cstdint>

// Brings the host up, runs the front end "Frontend.framework" beside the executable and takes
// everything down again. Called once, on the main thread; returns when the application quits.
//
// `first` and `second` go on to the front end's AppMain unchanged. `cookie` is 0xC3A951E7, or
// nothing happens. Gives what AppMain gives, 1 when the front end was not reached. An exception
// while the host is set up gives 1, too; a later one, such as AppMain's, goes on to the caller
// after the tear-down.
extern "C" std::int32_t Run(std::intptr_t first, std::int32_t second, std::int32_t cookie);
