#include <cstdint>
#include <cstdlib>

#include "host/FWR/StartupReport.h"

// The start-up library's behaviour when the cookie is wrong; with CAUSE set, when the host fails.
extern "C" [[gnu::visibility("default")]] std::int32_t Run(std::intptr_t, std::int32_t,
                                                           std::int32_t) {
    if (const char* const cause = std::getenv("CAUSE"))
        FWR::ReportStartup(FWR::StartupStage::kHostFailed, cause);
    return 1;
}
