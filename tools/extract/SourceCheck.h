#pragma once
#include <string>
#include <vector>

#include "tools/base/TextDocument.h"
#include "tools/check/Findings.h"
#include "tools/extract/SourceTexts.h"

namespace tool {

// How a text dictionary and the sources that it was extracted from differ: first the findings in
// the dictionary, then those in the sources, each in order. A comment on the line of either makes
// it ignore a rule. Throws a Failure for a dictionary that is not text or not read to its end.
std::vector<Finding> CheckSources(const std::string& dictionary, const SourceTexts& sources,
                                  const Findings::Rules& disabled);
// The same for a dictionary that was already read; `dictionary` is the name in places.
std::vector<Finding> CheckSources(const std::string& dictionary, const TextDocument& document,
                                  const SourceTexts& sources, const Findings::Rules& disabled);

}  // namespace tool
