#pragma once
#include <string>

#include "tools/command/VerbTable.h"

namespace tool {

// The output of --help, for the command and for a verb. No line is longer than 80 columns.
std::string Help();
std::string HelpOf(const VerbInfo& verb);

}  // namespace tool
