#include "tools/CommandLine.h"
#include "tools/Files.h"

int main(int argc, char** argv) {
    tool::HandleSignals();
    return tool::RunCommand(argc, argv);
}
