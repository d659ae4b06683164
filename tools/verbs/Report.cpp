#include "tools/base/Files.h"
#include "tools/report/Page.h"
#include "tools/verbs/Verbs.h"

namespace tool {

int Report(const Arguments& arguments) {
    const std::string& referenceName = arguments.Get("reference");
    if (referenceName.empty()) throw UsageFailure("--reference is required");
    RefuseInput(arguments.Get("output"), arguments.operands);
    RefuseInput(arguments.Get("output"), {referenceName});
    const TextSet reference(referenceName, TextSet::Role::kReference);
    std::vector<std::unique_ptr<TextSet>> translations;
    for (const std::string& name : Translations(arguments.operands, referenceName)) {
        translations.push_back(std::make_unique<TextSet>(name, TextSet::Role::kTranslation));
    }
    WriteOutput(arguments.Get("output"), ReportPage(reference, translations));
    return kSuccess;
}

}  // namespace tool
