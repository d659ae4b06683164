#pragma once
// The analysis behind `check`: of files for the command, of buffers for other callers.
#include <string>
#include <vector>

#include "tools/check/CheckedFile.h"
#include "tools/check/Findings.h"

namespace tool {

// A dictionary to compare translations with: read once, used for any number of them.
// Threads: constant once made; any number may use it.
struct Reference {
    CheckedFile file;
    Findings findings;  // for what its lines ignore
};

// Throws a Failure for a file that the application would refuse.
Reference ReadReference(const std::string& name, const std::string& bytes);

struct CheckResult {
    CheckedFile file;
    // In the order of the file. Then what is missing from it, in the order of the reference and
    // with places in the reference.
    std::vector<Finding> findings;
};

// Checks the bytes of a dictionary of either kind. `name` is used only in places. The reference may
// be null. 8-bit text is read in the encoding that UseEncoding() chose.
// Costs: linear in the size of both.
CheckResult CheckBytes(const std::string& name, const std::string& bytes,
                       const Reference* reference = nullptr, const Findings::Rules& disabled = {});

// The first step of both: the file by itself.
CheckedFile CheckFile(const std::string& name, const std::string& bytes, Findings& findings);

}  // namespace tool
