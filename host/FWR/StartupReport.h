#pragma once
// How far the start of the application got. Run reports it and the launcher reads it: a result of 1
// alone does not say whether it is Run's own or the front end's.
//
// Threads:  the launcher's thread.

#include <string>
#include <string_view>

namespace FWR {

enum class StartupStage {
    kNone,             // Run refused its cookie, or threw before it had tried to load the front end
    kHostFailed,       // the host framework could not be set up
    kNoFrontEnd,       // the front end could not be loaded, or has no entry
    kFrontEndReached,  // the front end's entry was found, and Run calls it
};

struct StartupReport {
    StartupStage stage = StartupStage::kNone;
    std::string cause;  // of a failure: one line for people in UTF-8; empty without a failure
};

// Never throws. The cause of a failure is "unknown cause" when `cause` is empty, and "out of
// memory" when there is none to keep it.
void ReportStartup(StartupStage stage, std::string_view cause) noexcept;
StartupReport GetStartupReport();

}  // namespace FWR
