#pragma once

#include <optional>
#include <string>
#include <variant>

namespace launcher {

struct Options {
    std::optional<std::string> language;
    std::optional<std::string> document;  // a path as given
    bool trace = false;
};

// An ending before anything is started.
struct Ending {
    std::string text;  // for standard output on code 0, else one line for standard error
    int exitCode;
};

constexpr int kStartupFailed = 1;
constexpr int kBadCommandLine = 2;
constexpr int kNoResources = 3;
constexpr int kResultOutOfRange = 255;

// Parses the command line. Does not check that what the options name exists.
std::variant<Options, Ending> ParseCommandLine(int argc, const char* const* argv,
                                               const std::string& version);

}  // namespace launcher
