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
                   "UI language, one of those shipped; else the environment's (LANGUAGE, LC_ALL, "
                   "LC_MESSAGES, LANG)")
        ->type_name("X");
    app.add_flag("--trace", options.trace,
                 "print on standard error what the host contains before, during and after the run, "
                 "the dictionary files looked for and read, and the timing marks");
    app.add_option("document", options.document, "project document; a sample without one")
        ->type_name("PATH");
    app.footer(
        "Options end at \"--\".\n"
        "Exit codes: the front end's (0 when all went well, 4 when the document cannot be used), 1 "
        "when start-up fails, 2 for a bad command line, 3 when the application has no dictionary, "
        "255 for a "
        "result of the front end that is not from 0 to 255.");
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
