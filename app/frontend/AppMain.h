#pragma once
// The front end's entry point and its arguments: an agreement between the launcher and the front
// end. Start-up passes them on unchanged.

#include <cstdint>

// The first argument is the address of one.
// Owns:     nothing; the path outlives the call.
struct LaunchRequest {
    const char* documentPath;  // as the system names it
};

// Bits of the second argument.
constexpr std::int32_t kLaunchTrace = 1;  // print on standard error what the host contains

constexpr std::int32_t kOutputFailed = 1;
constexpr std::int32_t kDocumentUnusable = 4;  // the application is shown without the document

// Runs the application on the launcher's thread. The host is up: a localizer and a parser factory
// are installed. Returns the exit code of the process: 0, or one of those above.
extern "C" std::int32_t AppMain(std::intptr_t request, std::int32_t flags, std::int32_t unused);
