// The application's executable: settles language and document, then lets the start-up library run
// the application.

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <variant>

#include "app/frontend/AppMain.h"
#include "app/launcher/CommandLine.h"
#include "app/launcher/Languages.h"
#include "app/trace/HostTrace.h"
#include "host/FWR/Application.h"
#include "host/Ovis/Language.h"
#include "host/Ovis/Module.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"
#include "startup/MacStartup.h"

namespace launcher {
namespace {

namespace fs = std::filesystem;

constexpr auto kLaunchCookie = static_cast<std::int32_t>(0xC3A951E7);
constexpr const char* kStartupLibrary = FRAMEWRIGHT_STARTUP_LIBRARY;  // its file name

std::string Version() {
    return std::string(FWR::GetApplicationName()) + ' ' + FWR::GetApplicationVersion() + " (" +
           FWR::GetApplicationBuild() + ')';
}

int Fail(const Ending& ending) {
    std::cerr << "framewright: " << ending.text << '\n';
    return ending.exitCode;
}

// `Run` of the start-up library beside the executable, which stays loaded.
decltype(Run)* FindRun(const fs::path& appFolder) {
    void* library = dlopen((appFolder / kStartupLibrary).c_str(), RTLD_NOW | RTLD_LOCAL);
    void* run = library != nullptr ? dlsym(library, "Run") : nullptr;
    if (run == nullptr) throw std::runtime_error(dlerror());
    return reinterpret_cast<decltype(Run)*>(run);
}

bool IsReadable(const fs::path& document) {
    std::error_code unknown;
    return fs::is_regular_file(document, unknown) && std::ifstream(document).is_open();
}

// Settles the UI language; what keeps the application from starting in one, if anything does.
std::optional<Ending> ChooseLanguage(const std::optional<std::string>& wanted,
                                     const fs::path& appFolder) {
    const auto shipped = ShippedLanguages(appFolder / "Dictionaries");
    if (wanted) PreferLanguage(*wanted);
    if (shipped.empty()) return Ending{NoResourcesMessage(), kNoResources};
    if (wanted && std::ranges::find(shipped, *wanted) == shipped.end()) {
        std::string accepted;
        for (const auto& name : shipped)
            accepted += (accepted.empty() ? "" : ", ") + name;
        return Ending{"unknown language '" + *wanted + "' (accepted: " + accepted + ')',
                      kBadCommandLine};
    }
    const auto language = BestLanguage(shipped);
    Ovis::SetLanguageString(vexacore::utility::StdToUTF16String(language));
    return {};
}

// Traces the run that it outlives, also one that ends by an exception.
class Trace {
public:
    explicit Trace(bool isWanted) : wanted(isWanted) {
        if (wanted) trace::PrintHost("before the run");
    }
    ~Trace() {
        if (!wanted) return;
        try {
            trace::PrintHost("after the run");
            trace::PrintHistory();
        } catch (const std::bad_alloc&) {  // the run's own outcome matters more
            std::cerr << "framewright: no memory for the trace\n";
        }
    }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

private:
    bool wanted;
};

std::int32_t RunApplication(decltype(Run)* run, const fs::path& document, bool traced) {
    const Trace tracing(traced);
    const LaunchRequest request{document.c_str()};
    return run(reinterpret_cast<std::intptr_t>(&request), traced ? kLaunchTrace : 0, kLaunchCookie);
}

// Why `Run` failed, as far as the host can tell; nothing when it was the front end that failed.
// This launcher passes the right cookie, but the start-up library may be of another version.
std::optional<std::string> StartupFailure() {
    if (auto failure = Ovis::Module::LastFailure(); !failure.empty()) return failure;
    if (!vexacore::debug::GlobalTimeMeasurement::Marks().empty()) return {};
    if (vexacore::config::GetIdentity().empty()) return "the launch cookie was refused";
    return "the host framework could not be set up";
}

int Start(const Options& options) {
    const fs::path appFolder =
        vexacore::utility::UTF16toStdString(vexacore::filesupport::Dir::AppDir().FullPath());
    const fs::path document = options.document.value_or(appFolder / "sample.project.xml");
    if (options.document && !IsReadable(document)) {
        return Fail({"cannot read '" + *options.document +
                         "' (accepted: the path of a readable project document)",
                     kBadCommandLine});
    }
    if (const auto ending = ChooseLanguage(options.language, appFolder)) return Fail(*ending);

    const auto result = RunApplication(FindRun(appFolder), document, options.trace);
    if (result == kStartupFailed) {
        if (const auto failure = StartupFailure()) return Fail({*failure, kStartupFailed});
    }
    return result;
}

}  // namespace
}  // namespace launcher

int main(int argc, char** argv) {
    using namespace launcher;
    try {
        const auto commandLine = ParseCommandLine(argc, argv, Version());
        if (const auto* options = std::get_if<Options>(&commandLine)) return Start(*options);
        const auto& ending = std::get<Ending>(commandLine);
        if (ending.exitCode != 0) return Fail(ending);
        if (!(std::cout << ending.text << std::flush))
            return Fail({"cannot write", kStartupFailed});
        return 0;
    } catch (const std::exception& error) {
        return Fail({error.what(), kStartupFailed});
    } catch (...) {
        return Fail({"the front end failed", kStartupFailed});
    }
}
