#pragma once
#include <string>

#include "tools/command/VerbTable.h"

namespace tool {

// What --help prints: of the command, and of a verb. No line is longer than 80 columns.
std::string Help();
std::string HelpOf(const VerbInfo& verb);

}  // namespace tool
