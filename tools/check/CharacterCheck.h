#pragma once
#include "tools/base/Text.h"
#include "tools/check/EscapeCheck.h"

namespace tool {

// Characters of a value that an editor hides, or that a conversion has damaged. One finding a rule.
// An escape is always intended; in `converted` only directions are checked.
void CheckCharacters(Units written, Units converted, const EscapeSink& add);

}  // namespace tool
