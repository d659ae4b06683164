#include "app/trace/HostTrace.h"

#include <chrono>
#include <iomanip>
#include <iostream>
#include <string>

#include "app/trace/Printable.h"
#include "host/Ovis/Language.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/Localizer.h"
#include "host/vexacore/Utility.h"
#include "host/vexacore/Xml.h"

namespace trace {
namespace {

using namespace vexacore;

const char* Presence(const void* object) { return object != nullptr ? "installed" : "none"; }

std::string Quoted(const UTF16String& text) {
    return '"' + Printable(utility::UTF16toStdString(text)) + '"';
}

// Nothing for a folder without a path.
std::string InFolder(const filesupport::Dir& folder) {
    return folder.FullPath().empty() ? "" : ", folder " + Quoted(folder.FullPath());
}

}  // namespace

void PrintHost(std::string_view when) {
    std::clog << when << ":\n"
              << "  localizer: " << Presence(config::Localizer::Get())
              << InFolder(config::Localizer::GetFolder()) << '\n'
              << "  error manager: " << Presence(config::ErrorManager::Get()) << '\n'
              << "  parser factory: " << Presence(xml::GetParserFactory()) << '\n'
              << "  UI language: " << Quoted(Ovis::GetLanguageString()) << '\n'
              << "  locale: " << Quoted(Locale::GetLanguage()) << InFolder(Locale::GetFolder())
              << '\n';
    for (const auto& [setting, value] : config::GetIdentity()) {
        std::clog << "  " << setting << ": " << Quoted(value) << '\n';
    }
    std::clog.flush();
}

void PrintHistory() {
    const auto printLine = [](debug::Clock::duration since, std::string_view text) {
        using Milliseconds = std::chrono::duration<double, std::milli>;
        std::clog << std::fixed << std::setprecision(3) << std::setw(10)
                  << Milliseconds(since).count() << " ms  " << Printable(text) << '\n';
    };
    const auto events = debug::HostEvents::All();
    std::clog << "events:\n";
    for (const auto& event : events)
        printLine(event.time - events.front().time, event.text);

    const auto marks = debug::GlobalTimeMeasurement::Marks();
    std::clog << "timing marks:\n";
    for (const auto& mark : marks) {
        printLine(mark.time - marks.front().time, mark.Text());
    }
    std::clog.flush();
}

}  // namespace trace
