#pragma once
#include <string_view>

#include "tools/base/Text.h"

namespace tool {

struct OuterBlanks {
    std::size_t before;
    std::size_t after;
    bool wideEnd;  // ends in a full-width character, which includes the room of a blank
};
OuterBlanks BlanksAround(Units text);

// CR LF is one line break.
std::size_t LineBreaks(Units text);

// The end of a text, without blanks, closing brackets and quotation marks. Marks of all scripts
// with the same meaning are one kind: "…" is "...", a Greek ";" is "?".
struct FinalMark {
    std::string_view kind;  // "a question mark"
    std::size_t at;         // the last unit of the mark, or of the text
    bool mayLackStop;       // in scripts without a full stop, such as Thai
};
FinalMark FinalPunctuation(Units text);

}  // namespace tool
