#pragma once
#include <functional>
#include <string>
#include <vector>

#include "tools/base/Text.h"
#include "tools/check/Rules.h"

namespace tool {

// Takes a finding at some units of the written value.
using EscapeSink =
    std::function<void(Rule, std::size_t position, std::size_t length, std::string text)>;

// Converts a written value as the loader does. Reports invalid escapes and what is dropped.
Text CheckEscapes(Units written, const EscapeSink& add);

// For each unit of the converted value, the position of its written form.
std::vector<std::size_t> OriginsOf(Units written);

}  // namespace tool
