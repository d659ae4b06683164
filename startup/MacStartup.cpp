#include "startup/MacStartup.h"

#include <boost/shared_ptr.hpp>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "host/FWR/StartupReport.h"
#include "host/HUIF/Initializer.h"
#include "host/Ovis/Module.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/String.h"
#include "startup/VEXAInitializer.h"

using FWR::StartupStage;
using vexacore::debug::GlobalTimeMeasurement;

namespace {

using AppMain = std::int32_t(std::intptr_t, std::int32_t, std::int32_t);

const vexacore::UTF16String kFrontendFrameworkName = u"Frontend.framework";
const std::string kStrAppMain = "AppMain";

constexpr char kMeasurement[] = "StartupTime";

void EndMeasurement() {
    GlobalTimeMeasurement::EndMeasurement(kMeasurement, "Application closing", true);
}

// Null after an exception, which is reported.
std::unique_ptr<Startup::VEXAInitializer> BringUpHost() noexcept {
    try {
        return std::make_unique<Startup::VEXAInitializer>();
    } catch (const std::bad_alloc&) {
        FWR::ReportStartup(StartupStage::kHostFailed, "out of memory");
    } catch (const std::exception& error) {
        FWR::ReportStartup(StartupStage::kHostFailed, error.what());
    } catch (...) {
        FWR::ReportStartup(StartupStage::kHostFailed, {});
    }
    return nullptr;
}

void ReportNoFrontEnd() noexcept {
    try {
        FWR::ReportStartup(StartupStage::kNoFrontEnd, Ovis::Module::LastFailure());
    } catch (const std::bad_alloc&) {  // the failure is clear, its cause is lost
        FWR::ReportStartup(StartupStage::kNoFrontEnd, "out of memory");
    }
}

}  // namespace

extern "C" [[gnu::visibility("default")]] std::int32_t Run(std::intptr_t first, std::int32_t second,
                                                           std::int32_t cookie) {
    if (cookie != Startup::kLaunchCookie) return 1;

    // Destroyed in reverse however Run ends: first the module handle, then the host.
    const auto host = BringUpHost();
    if (!host) return 1;
    boost::shared_ptr<Ovis::Module> frontend;

    GlobalTimeMeasurement::BeginMeasurement(kMeasurement, "Starting", true, 1000);
    const std::int32_t status = Ovis::Module::LoadRelative(
        kFrontendFrameworkName, Ovis::Module::PathType::kApplicationFramework, frontend);
    GlobalTimeMeasurement::IntermediateMeasurement(kMeasurement, "Framewright DLL load finished",
                                                   true, 6);
    const bool loaded = status >= 0 && frontend;
    void* const entry = loaded ? frontend->GetProcAddress(kStrAppMain.c_str()) : nullptr;
    if (!entry) {
        // Nothing may throw once the measurement has ended: the end mark says that Run returns.
        ReportNoFrontEnd();
        EndMeasurement();
        return 1;
    }
    FWR::ReportStartup(StartupStage::kFrontEndReached, {});

    const HUIF::Initializer userInterface;
    const std::int32_t result = reinterpret_cast<AppMain*>(entry)(first, second, 0);
    EndMeasurement();
    return result;
}
