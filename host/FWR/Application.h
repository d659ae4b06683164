#pragma once

namespace FWR {

// Nul-terminated 8-bit texts in static storage.
const char* GetApplicationName();
const char* GetApplicationVersion();
const char* GetApplicationBuild();

}  // namespace FWR
