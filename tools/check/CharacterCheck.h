#pragma once
#include "tools/base/Text.h"
#include "tools/check/EscapeCheck.h"

namespace tool {

// Characters of a value that an editor does not show, or that a conversion has damaged. One finding
// a rule. What is written as an escape is meant; only directions are looked at in `converted`.
void CheckCharacters(Units written, Units converted, const EscapeSink& add);

}  // namespace tool
