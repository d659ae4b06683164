#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <optional>

#include "tools/base/Files.h"
#include "tools/check/Check.h"
#include "tools/check/Formats.h"
#include "tools/extract/SourceCheck.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

int ListRules() {
    std::string list;
    for (const RuleInfo& rule : AllRules()) {
        char line[256];
        std::snprintf(line, sizeof line, "%-21s %-8s %s\n", rule.name, Name(rule.severity),
                      rule.help);
        list += line;
    }
    WriteStandardOutput(list);
    return kSuccess;
}

// The summary of all files: one line on standard error, or none for files without findings.
class Summary {
public:
    void CountUnreadable() {
        ++files;
        ++unreadable;
    }
    void Count(const std::vector<Finding>& findings) {
        ++files;
        Add(findings);
    }
    // Adds more findings of a file that is already counted.
    void Add(const std::vector<Finding>& findings) {
        for (const Finding& finding : findings)
            ++counts[static_cast<std::size_t>(Info(finding.rule).severity)];
    }
    bool AnyUnreadable() const { return unreadable != 0; }
    void Print() const {
        if (unreadable + counts[0] + counts[1] + counts[2] == 0) return;
        std::cerr << "wordlex: " << Counted(files, "file") << ": " << Counted(counts[2], "error")
                  << ", " << Counted(counts[1], "warning") << ", " << Counted(counts[0], "note");
        if (unreadable != 0) std::cerr << "; " << unreadable << " cannot be read";
        std::cerr << '\n';
    }

private:
    std::size_t files = 0;
    std::size_t unreadable = 0;
    std::size_t counts[3] = {};  // by severity
};

// Writes findings to standard output: those of each file at once, but a SARIF log at the end.
class Writer {
public:
    explicit Writer(const std::string& formName)
        : form(formName), lineFormat(FormatOf(formName, STDOUT_FILENO)) {}

    void Write(std::vector<Finding> findings) {
        if (form == "sarif") {
            std::ranges::move(findings, std::back_inserter(collected));
        } else {
            WriteStandardOutput(form == "github" ? GithubCommands(findings)
                                                 : Print(findings, lineFormat));
        }
    }
    void Finish(bool complete) const {
        if (form == "sarif") WriteStandardOutput(SarifLog(collected, complete));
    }

private:
    std::string form;
    Format lineFormat;
    std::vector<Finding> collected;
};

}  // namespace

int Check(const Arguments& arguments) {
    if (arguments.Has("list-rules")) return ListRules();
    if (arguments.operands.empty()) throw UsageFailure("FILE is required");
    Writer writer(arguments.Get("format"));
    const Findings::Rules disabled = RulesOf(arguments.All("disable"));
    const Severity failOn =
        arguments.Get("fail-on") == "warning" ? Severity::kWarning : Severity::kError;
    const std::string& referenceName = arguments.Get("reference");  // may be among the files
    std::optional<Reference> reference;
    if (!referenceName.empty()) {
        reference = ReadReference(referenceName, ReadInput(referenceName));
    }
    Summary summary;
    bool failed = false;
    if (arguments.Has("sources")) {
        const SourceTexts sources(arguments.All("sources"));
        std::vector<std::string> compared =
            referenceName.empty() ? arguments.operands : std::vector{referenceName};
        if (arguments.IsSetting("sources")) {
            std::erase_if(compared, [&](const std::string& name) {
                return std::ranges::none_of(arguments.operands, [&](const std::string& operand) {
                    return IsSameFile(operand, name);
                });
            });
        }
        for (const std::string& name : compared) {
            std::vector<Finding> found = CheckSources(name, sources, disabled);
            summary.Add(found);
            failed |= AnyAtOrAbove(found, failOn);
            writer.Write(std::move(found));
        }
    }
    for (const std::string& name : arguments.operands) {
        std::string bytes;
        try {
            bytes = ReadInput(name);
        } catch (const Failure& unreadable) {
            std::cerr << "wordlex: " << unreadable.what() << '\n';
            summary.CountUnreadable();
            continue;
        }
        const bool compared =
            reference.has_value() && !IsSameFile(name, referenceName) &&
            (!arguments.IsSetting("reference") || arguments.project.HasLanguage(name));
        auto found = CheckBytes(name, bytes, compared ? &*reference : nullptr, disabled).findings;
        summary.Count(found);
        failed |= AnyAtOrAbove(found, failOn);
        writer.Write(std::move(found));
    }
    writer.Finish(!summary.AnyUnreadable());
    summary.Print();
    return summary.AnyUnreadable() ? kFailure : failed ? kDifference : kSuccess;
}

}  // namespace tool
