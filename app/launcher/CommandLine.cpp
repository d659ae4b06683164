#include "app/launcher/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "app/trace/Printable.h"

namespace launcher {
namespace {

constexpr const char* kAccepted =
    " (accepted: --language X, --trace, --help, --version, the path of a document)";

constexpr std::string_view kEndOfOptions = "--";

Ending Refused(const std::string& what) {
    return {trace::Printable(what) + kAccepted, kBadCommandLine};
}

// "--language=", after which the parser would take the next argument.
bool LacksName(int argc, const char* const* argv) {
    const auto end = std::find(argv, argv + argc, kEndOfOptions);
    return std::find(argv, end, std::string_view("--language=")) != end;
}

}  // namespace

std::variant<Options, Ending> ParseCommandLine(int argc, const char* const* argv,
                                               const std::string& version) {
    CLI::App app("Shows a project document in the user's language.", "framewright");
    Options options;
    app.set_version_flag("--version", version);
    app.add_option("--language", options.language,
                   "UI language, one that has a dictionary; else the environment's (LANGUAGE, "
                   "LC_ALL, LC_MESSAGES, LANG)")
        ->type_name("X");
    app.add_flag("--trace", options.trace,
                 "print on standard error what the host contains before, during and after the run, "
                 "the dictionary files looked for and read, and the timing marks");
    app.add_option("document", options.document, "project document; a sample without one")
        ->type_name("PATH");
    app.footer(
        "Options end at \"--\".\n"
        "Exit codes:\n"
        "  0    all went well\n"
        "  1    the application did not start or failed, or its output cannot be written\n"
        "  2    bad command line, which includes a language without a dictionary\n"
        "  3    there is no dictionary at all\n"
        "  4    the application was shown without the document, which cannot be used\n"
        "  255  the front end's result is not from 0 to 255\n"
        "Any other code is the front end's own.");
    app.allow_extras();
    if (LacksName(argc, argv)) return Refused("--language= lacks the name of a language");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Ending{app.help(), 0};
    } catch (const CLI::CallForVersion&) {
        return Ending{version + '\n', 0};
    } catch (const CLI::ParseError& error) {
        return Refused(error.what());
    }
    auto unknown = app.remaining();  // includes "--"
    const auto end = std::ranges::find(unknown, kEndOfOptions);
    const bool isOption = end != unknown.begin() && unknown.front().starts_with('-');
    if (end != unknown.end()) unknown.erase(end);
    if (unknown.empty()) return options;
    return Refused((isOption ? "unknown option '" : "unexpected argument '") + unknown.front() +
                   '\'');
}

}  // namespace launcher
