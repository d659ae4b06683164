#include "host/FWR/StartupReport.h"

#include <new>

namespace FWR {

namespace {
StartupReport report;
}

void ReportStartup(StartupStage stage, std::string_view cause) noexcept {
    report.stage = stage;
    report.cause.clear();
    try {
        report.cause = cause;
    } catch (const std::bad_alloc&) {  // the stage must do
    }
}

StartupReport GetStartupReport() { return report; }

}  // namespace FWR
