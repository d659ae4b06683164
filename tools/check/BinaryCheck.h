#pragma once
#include <string>

#include "tools/base/BinaryFile.h"
#include "tools/check/CheckedFile.h"

namespace tool {

// Whether the loader accepts the file. If not, adds a finding.
bool CheckFault(const BinaryFile& binary, const std::string& name, Findings& findings);
// Finds what prevents entries of a binary file from being loaded or found.
CheckedFile CheckBinary(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
