#pragma once
#include <string>

#include "tools/check/CheckedFile.h"

namespace tool {

// What the loader would trip over or silently change in a text file.
CheckedFile CheckText(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
