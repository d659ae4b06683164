#pragma once
#include <string>

#include "tools/base/TextScanner.h"
#include "tools/check/CheckedFile.h"

namespace tool {

// Whether the bytes are text in the form that the scanner, like the loader, assumes. If not, adds a
// finding.
bool CheckForm(const TextScanner& scanner, const std::string& name, const std::string& bytes,
               Findings& findings);
// Finds what the loader would stumble over or silently change in a text file.
CheckedFile CheckText(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
