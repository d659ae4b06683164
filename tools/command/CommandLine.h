#pragma once

namespace tool {

// Runs the command with the arguments of main; returns its exit code.
int RunCommand(int argc, char** argv);

}  // namespace tool
