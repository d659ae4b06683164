#pragma once
// Findings in formats for services.
#include <string>
#include <vector>

#include "tools/check/Findings.h"

namespace tool {

// The findings of all files as a SARIF 2.1.0 log of one run, with the table of rules. `complete` is
// false when a file could not be read. Columns count UTF-16 units. Absolute file names become
// "file:" URIs, others relative references.
std::string SarifLog(const std::vector<Finding>& findings, bool complete);

// One workflow command of GitHub a line: "::error file=…,line=…,col=…,title=RULE::TEXT".
std::string GithubCommands(const std::vector<Finding>& findings);

}  // namespace tool
