#pragma once

#include <cstdint>

namespace Startup {

// By which `Run` knows a launcher that was made for it.
inline constexpr auto kLaunchCookie = static_cast<std::int32_t>(0xC3A951E7);

}  // namespace Startup

// Brings the host up, runs the front end "Frontend.framework" beside the executable and takes
// everything down again. Called once, on the main thread; returns when the application quits.
//
// `first` and `second` go on to the front end's AppMain unchanged. `cookie` is kLaunchCookie, or
// nothing happens. Returns what AppMain returns, 1 when the front end was not reached. An exception
// while the host is set up makes it return 1, too; a later one, such as AppMain's, goes on to the
// caller after the tear-down. Which of these happened stands in FWR::GetStartupReport().
extern "C" std::int32_t Run(std::intptr_t first, std::int32_t second, std::int32_t cookie);
