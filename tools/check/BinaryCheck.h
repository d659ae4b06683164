#pragma once
#include <string>

#include "tools/check/CheckedFile.h"

namespace tool {

// Finds what prevents entries of a binary file from being loaded or found.
CheckedFile CheckBinary(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
