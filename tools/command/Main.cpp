#include "tools/base/Files.h"
#include "tools/command/CommandLine.h"

int main(int argc, char** argv) {
    tool::HandleSignals();
    return tool::RunCommand(argc, argv);
}
