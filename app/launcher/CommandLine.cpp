#include "app/launcher/CommandLine.h"

#include <CLI/CLI.hpp>

namespace launcher {
namespace {

constexpr const char* kAccepted =
    " (accepted: --language X, --trace, --help, --version, the path of a document)";

Ending Refused(const std::string& what) { return {what + kAccepted, kBadCommandLine}; }

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
                 "tell on standard error what the host holds before, during and after the run, and "
                 "the timing marks");
    app.add_option("document", options.document, "project document; a sample without one")
        ->type_name("PATH");
    app.footer(
        "Exit codes: the front end's (0 when all went well), 1 when start-up fails, 2 for a bad "
        "command line, 3 when no localized resources are found.");
    app.allow_extras();
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Ending{app.help(), 0};
    } catch (const CLI::CallForVersion&) {
        return Ending{version + '\n', 0};
    } catch (const CLI::ParseError& error) {
        return Refused(error.what());
    }
    const auto unknown = app.remaining();
    if (unknown.empty()) return options;
    const bool isOption = unknown.front().starts_with('-');
    return Refused((isOption ? "unknown option '" : "unexpected argument '") + unknown.front() +
                   '\'');
}

}  // namespace launcher
