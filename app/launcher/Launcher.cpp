// The application's executable: chooses language and document, then has the start-up library run
// the application.

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>

#include "app/frontend/AppMain.h"
#include "app/launcher/CommandLine.h"
#include "app/launcher/Languages.h"
#include "app/trace/HostTrace.h"
#include "app/trace/Printable.h"
#include "host/FWR/Application.h"
#include "host/FWR/StartupReport.h"
#include "host/Ovis/Language.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"
#include "startup/MacStartup.h"

namespace launcher {
namespace {

namespace fs = std::filesystem;

constexpr const char* kStartupLibrary = FRAMEWRIGHT_STARTUP_LIBRARY;  // its file name

std::string Version() {
    return std::string(FWR::GetApplicationName()) + ' ' + FWR::GetApplicationVersion() + " (" +
           FWR::GetApplicationBuild() + ')';
}

int Fail(const Ending& ending) {
    std::cerr << "framewright: " << ending.text << '\n';
    return ending.exitCode;
}

// `Run` of the start-up library beside the executable. The library stays loaded.
decltype(Run)* FindRun(const fs::path& appFolder) {
    void* library = dlopen((appFolder / kStartupLibrary).c_str(), RTLD_NOW | RTLD_LOCAL);
    void* run = library != nullptr ? dlsym(library, "Run") : nullptr;
    if (run == nullptr) throw std::runtime_error(dlerror());
    return reinterpret_cast<decltype(Run)*>(run);
}

// Chooses the UI language. Returns what keeps the application from starting in it, if anything.
std::optional<Ending> ChooseLanguage(const std::optional<std::string>& wanted,
                                     const fs::path& appFolder) {
    const auto dictionaries = FindDictionaries(appFolder);
    if (wanted) PreferLanguage(*wanted);
    if (!dictionaries.Any()) return Ending{NoResourcesMessage(), kNoResources};
    const auto offered = OfferedLanguages(dictionaries);
    if (wanted && !CanShow(dictionaries, *wanted)) {
        std::string accepted;
        for (const auto& name : offered)
            accepted += (accepted.empty() ? "" : ", ") + trace::Printable(name);
        if (dictionaries.neutral) accepted += ", the name of any other locale";
        return Ending{"no readable dictionary for the language '" + trace::Printable(*wanted) +
                          "' (accepted: " + accepted + ')',
                      kBadCommandLine};
    }
    const auto language = wanted ? *wanted : BestLanguage(offered);
    Ovis::SetLanguageString(vexacore::utility::StdToUTF16String(language));
    return {};
}

// Traces the run, also one that ends with an exception.
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
        } catch (const std::bad_alloc&) {  // the run's own result matters more
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
    return run(reinterpret_cast<std::intptr_t>(&request), traced ? kLaunchTrace : 0,
               Startup::kLaunchCookie);
}

// Why `Run` did not reach the front end; nothing when it did.
std::optional<std::string> StartupFailure() {
    const auto [stage, cause] = FWR::GetStartupReport();
    switch (stage) {
        case FWR::StartupStage::kNone:
            // It returned, and this launcher passes the cookie of its own version.
            return "the launch cookie was refused: the start-up library is of another version";
        case FWR::StartupStage::kHostFailed:
            return "the host framework could not be set up: " + trace::Printable(cause);
        case FWR::StartupStage::kNoFrontEnd:
            return trace::Printable(cause);
        case FWR::StartupStage::kFrontEndReached:
            break;
    }
    return {};
}

int Start(const Options& options) {
    const fs::path appFolder =
        vexacore::utility::UTF16toStdString(vexacore::filesupport::Dir::AppDir().FullPath());
    if (std::error_code unreachable; !fs::is_directory(appFolder, unreachable)) {
        return Fail({"the application's folder cannot be reached as '" +
                         trace::Printable(appFolder.native()) +
                         "': move it to a path that is UTF-8",
                     kStartupFailed});
    }
    const fs::path document = options.document.value_or(appFolder / "sample.project.xml");
    if (options.document) {
        const auto cause = vexacore::utility::FileUtils::WhyUnreadable(document);
        if (!cause.empty()) {
            return Fail({"cannot read '" + trace::Printable(*options.document) + "': " + cause +
                             " (accepted: the path of a readable project document)",
                         kBadCommandLine});
        }
    }
    if (const auto ending = ChooseLanguage(options.language, appFolder)) return Fail(*ending);

    const auto result = RunApplication(FindRun(appFolder), document, options.trace);
    if (result == kStartupFailed) {
        if (const auto failure = StartupFailure()) return Fail({*failure, kStartupFailed});
    }
    // The system keeps only eight bits: 256 would look like success.
    constexpr std::int32_t kLargestExitCode = 255;
    return result >= 0 && result <= kLargestExitCode ? result : kResultOutOfRange;
}

}  // namespace
}  // namespace launcher

int main(int argc, char** argv) {
    using namespace launcher;
    constexpr const char* kNoText = "the application failed with an error without a text";
    try {
        const auto commandLine = ParseCommandLine(argc, argv, Version());
        if (const auto* options = std::get_if<Options>(&commandLine)) return Start(*options);
        const auto& ending = std::get<Ending>(commandLine);
        if (ending.exitCode != 0) return Fail(ending);
        if (!(std::cout << ending.text << std::flush))
            return Fail({"standard output cannot be written", kStartupFailed});
        return 0;
    } catch (const std::bad_alloc&) {
        return Fail({"out of memory", kStartupFailed});
    } catch (const std::exception& error) {
        const auto cause = trace::Printable(error.what());
        return Fail({cause.empty() ? kNoText : cause, kStartupFailed});
    } catch (...) {
        return Fail({kNoText, kStartupFailed});
    }
}
