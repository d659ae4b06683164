#pragma once
// How far the start of the application came. Run reports it, and the launcher reads it: Run's
// result alone does not say whether the 1 is its own or the front end's.
//
// Threads:  the launcher's thread.

#include <string>
#include <string_view>

namespace FWR {

enum class StartupStage {
    kNone,             // none reported: Run refused its cookie, or threw before the front end
    kHostFailed,       // the host framework could not be set up
    kNoFrontEnd,       // the front end could not be loaded, or has no entry
    kFrontEndReached,  // what Run returned or threw is the front end's
};

struct StartupReport {
    StartupStage stage = StartupStage::kNone;
    std::string cause;  // of a failure, one line for people in UTF-8; empty when not known
};

// Never throws; a cause for which there is no memory is left out.
void ReportStartup(StartupStage stage, std::string_view cause) noexcept;
StartupReport GetStartupReport();

}  // namespace FWR
