#include "host/FWR/StartupReport.h"

#include <new>

namespace FWR {

namespace {
StartupReport report;
}

void ReportStartup(StartupStage stage, std::string_view cause) noexcept {
    const bool failed = stage == StartupStage::kHostFailed || stage == StartupStage::kNoFrontEnd;
    report.stage = stage;
    try {
        report.cause = failed && cause.empty() ? "unknown cause" : cause;
    } catch (const std::bad_alloc&) {
        report.cause = "out of memory";  // short enough to need none
    }
}

StartupReport GetStartupReport() { return report; }

}  // namespace FWR
