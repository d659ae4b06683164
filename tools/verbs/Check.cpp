#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "tools/base/Content.h"
#include "tools/base/Files.h"
#include "tools/check/SourceCheck.h"
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

int Check(const Arguments& arguments) {
    if (arguments.Has("list-rules")) return ListRules();
    if (arguments.operands.empty()) throw UsageFailure("FILE is required");
    const Format format = FormatOf(arguments.Get("format"), STDOUT_FILENO);
    const Findings::Rules disabled = RulesOf(arguments.All("disable"));
    const Severity failOn =
        arguments.Get("fail-on") == "warning" ? Severity::kWarning : Severity::kError;
    const std::string& referenceName = arguments.Get("reference");
    CheckedFile reference;
    Findings ofReference;
    if (!referenceName.empty()) {
        reference = CheckUsable(referenceName, ReadInput(referenceName), ofReference);
    }
    bool failed = false;
    if (arguments.Has("sources")) {
        const SourceTexts sources(arguments.All("sources"));
        const std::vector<std::string> compared =
            referenceName.empty() ? arguments.operands : std::vector{referenceName};
        for (const std::string& name : compared) {
            const std::vector<Finding> found = CheckSources(name, sources, disabled);
            WriteStandardOutput(Print(found, format));
            failed |= AnyAtOrAbove(found, failOn);
        }
    }
    for (const std::string& name : arguments.operands) {
        Findings findings(disabled);
        const CheckedFile file = CheckFile(name, ReadInput(name), findings);
        if (file.usable && IsTranslation(name, referenceName)) {
            CheckAgainst(file, reference, ofReference, findings);
        }
        const std::vector<Finding> found = findings.Take();
        WriteStandardOutput(Print(found, format));
        failed |= AnyAtOrAbove(found, failOn);
    }
    return failed ? kDifference : kSuccess;
}

}  // namespace tool
