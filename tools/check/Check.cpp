#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "tools/base/Content.h"
#include "tools/base/Files.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

int ListRules() {
    std::string list;
    for (const RuleInfo& rule : AllRules()) {
        char line[256];
        std::snprintf(line, sizeof line, "%-19s %-8s %s\n", rule.name, Name(rule.severity),
                      rule.help);
        list += line;
    }
    WriteStandardOutput(list);
    return kSuccess;
}

// The reference may be among the files that it is compared with.
bool IsTranslation(const std::string& name, const std::string& reference) {
    std::error_code absent;
    return !reference.empty() && !std::filesystem::equivalent(name, reference, absent);
}

}  // namespace

int Check(const CheckOptions& options) {
    if (options.listRules) return ListRules();
    const Format format = options.json               ? Format::kJson
                          : MayColour(STDOUT_FILENO) ? Format::kColouredText
                                                     : Format::kText;
    CheckedFile reference;
    Findings ofReference;
    if (!options.reference.empty()) {
        reference = CheckUsable(options.reference, ReadInput(options.reference), ofReference);
    }
    bool failed = false;
    for (const std::string& name : options.files) {
        Findings findings(options.disabled);
        const CheckedFile file = CheckFile(name, ReadInput(name), findings);
        if (file.usable && IsTranslation(name, options.reference)) {
            CheckAgainst(file, reference, ofReference, findings);
        }
        const std::vector<Finding> found = findings.Take();
        WriteStandardOutput(Print(found, format));
        failed |= AnyAtOrAbove(found, options.failOn);
    }
    return failed ? kDifference : kSuccess;
}

}  // namespace tool
