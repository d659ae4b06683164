#pragma once
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// The "&" of a converted text, as the string class removes them.
struct Ampersands {
    std::vector<std::size_t> marks;  // before the letter of an accelerator
    std::size_t end;                 // where the text ends and its key combination begins
    bool trailing = false;           // the last one before `end` marks nothing
};

// Names such as "AT&T", addresses ("?a=1&b=2") and "&amp;" have none.
Ampersands FindAmpersands(Units text);

}  // namespace tool
