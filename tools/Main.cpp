#include <csignal>

#include "tools/CommandLine.h"

int main(int argc, char** argv) {
    // A reader that went away is a write that failed.
    std::signal(SIGPIPE, SIG_IGN);
    return tool::RunCommand(argc, argv);
}
