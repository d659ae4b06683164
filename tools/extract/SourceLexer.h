#pragma once
#include <string>
#include <vector>

#include "tools/check/Findings.h"

namespace tool {

// A string literal, or several that the compiler joins, with the language's escapes resolved.
struct SourceLiteral {
    Place place;            // of the opening mark, without the prefix; of the first one
    std::size_t begin = 0;  // of the first opening mark, in the bytes of the source
    std::size_t end = 0;    // after the last closing mark
    std::vector<unsigned short> text;
    // "wordlex: ignore unextracted-key" is in a comment on its line, or alone on the line before.
    bool ignored = false;
};

// The literals that begin with "$$$/" or "($$$/", up to a zero. FindTexts documents the rules.
std::vector<SourceLiteral> FindLiterals(const std::string& name, const std::string& bytes);

}  // namespace tool
