#pragma once
#include <functional>
#include <string>

#include "tools/base/Text.h"
#include "tools/check/Rules.h"

namespace tool {

// Takes a finding at a unit of the written value.
using EscapeSink = std::function<void(Rule, std::size_t position, std::string text)>;

// Converts a written value as the loader does, and tells what in it is no escape or is dropped.
Text CheckEscapes(Units written, const EscapeSink& add);

}  // namespace tool
