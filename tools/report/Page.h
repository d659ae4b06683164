#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tools/report/Coverage.h"

namespace tool {

// The page that shows the translations, one a column: HTML that loads nothing else. Texts stay
// inside the page's data, whatever they contain.
std::string ReportPage(const TextSet& reference,
                       const std::vector<std::unique_ptr<TextSet>>& translations);

}  // namespace tool
