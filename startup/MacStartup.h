#pragma once

#include <cstdint>

namespace Startup {

// `Run` accepts only launchers that pass this value.
inline constexpr auto kLaunchCookie = static_cast<std::int32_t>(0xC3A951E7);

}  // namespace Startup

// Brings the host up, runs the front end "Frontend.framework" beside the executable and takes
// everything down again. Call it once, on the main thread. It returns when the application quits.
//
// `first` and `second` reach the front end's AppMain unchanged. Unless `cookie` is kLaunchCookie,
// nothing happens. Returns what AppMain returns, or 1 when the front end was not reached. An
// exception while the host is set up also makes it return 1. A later exception, such as AppMain's,
// reaches the caller after the tear-down. FWR::GetStartupReport() says which of these happened.
extern "C" std::int32_t Run(std::intptr_t first, std::int32_t second, std::int32_t cookie);
