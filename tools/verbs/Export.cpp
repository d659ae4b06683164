#include <algorithm>
#include <filesystem>
#include <initializer_list>

#include "tools/base/Files.h"
#include "tools/base/Language.h"
#include "tools/base/Progress.h"
#include "tools/exchange/Exchange.h"
#include "tools/exchange/Po.h"
#include "tools/exchange/ShownText.h"
#include "tools/exchange/Xliff.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

using Line = TextDocument::Line;

// The language from the option, else from the file's name.
std::string LanguageFor(const std::string& option, const std::string& name) {
    return option.empty() ? LanguageOf(name) : option;
}

// The entries of `from` that no other document has.
void AddObsolete(const TextDocument& from, std::initializer_list<const TextDocument*> others,
                 Exchange& exchange) {
    for (std::size_t i = 0; i < from.Lines().size(); ++i) {
        const Line& line = from.Lines()[i];
        const bool isElsewhere = std::ranges::any_of(others, [&line](const TextDocument* other) {
            return other->Find(line.key).has_value();
        });
        if (isElsewhere || from.Find(line.key) != i) continue;
        Unit unit;
        unit.key = ShownKey(line.key);
        unit.source = unit.key;  // the text is no longer known
        unit.target = ShownText(from.Value(line));
        unit.state = State::kTranslated;
        unit.obsolete = true;
        exchange.units.push_back(std::move(unit));
    }
}

// The file for translators.
std::string Exported(const Arguments& arguments) {
    const std::string& name = arguments.operands.front();
    const std::string& referenceName = arguments.Get("reference");
    const Progress progress("exporting", name);
    const TextDocument document = ReadTextDocument(name);
    const bool isTemplate = referenceName.empty();
    const TextDocument reference =
        isTemplate ? document.EmptyLikeThis() : ReadTextDocument(referenceName);
    const TextDocument& wanted = isTemplate ? document : reference;

    Exchange exchange;
    exchange.original =
        std::filesystem::path(isTemplate ? name : referenceName).filename().string();
    exchange.sourceLanguage =
        LanguageFor(arguments.Get("source-language"), isTemplate ? name : referenceName);
    exchange.targetLanguage =
        LanguageFor(arguments.Get("language"), isTemplate ? std::string() : name);
    for (std::size_t i = 0; i < wanted.Lines().size(); ++i) {
        const Line& line = wanted.Lines()[i];
        if (wanted.Find(line.key) != i) continue;
        const auto at = isTemplate ? std::nullopt : document.Find(line.key);
        exchange.units.push_back(
            MakeUnit(wanted, line, document, at ? &document.Lines()[*at] : nullptr));
    }
    if (!isTemplate) {
        AddObsolete(document, {&reference}, exchange);
        const std::string obsolete = ObsoleteName(name);
        if (name != "-" && std::filesystem::exists(obsolete)) {
            AddObsolete(ReadTextDocument(obsolete), {&reference, &document}, exchange);
        }
    }
    const auto version =
        arguments.Get("xliff-version") == "1.2" ? XliffVersion::k12 : XliffVersion::k21;
    return arguments.Get("format") == "xliff" ? WriteXliff(exchange, version) : WritePo(exchange);
}

}  // namespace

int Export(const Arguments& arguments) {
    RefuseInput(arguments.Get("output"), arguments.operands);
    RefuseInput(arguments.Get("output"), arguments.All("reference"));
    WriteOutput(arguments.Get("output"), Exported(arguments));
    return kSuccess;
}

}  // namespace tool
