#pragma once
#include <string>

#include "tools/check/CheckedFile.h"

namespace tool {

// Finds what the loader would stumble over or silently change in a text file.
CheckedFile CheckText(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
