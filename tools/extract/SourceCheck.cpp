#include "tools/extract/SourceCheck.h"

#include <algorithm>

#include "tools/base/Annotations.h"
#include "tools/base/TextDocument.h"

namespace tool {

namespace {

using Line = TextDocument::Line;

// For the entry.
Place PlaceOf(const std::string& name, const TextDocument& document, const Line& line) {
    const Units head = document.UnitsOfLine(line).first(line.entry.begin);
    Place place{.file = name, .line = line.number, .column = 1};
    for (std::size_t i = 0; i < head.size(); ++i) {
        const bool isMark = i == 0 && line.number == 1 && head[i] == 0xFEFF;
        place.column += isMark || IsSecondHalf(head, i) ? 0U : 1U;
        place.unit += isMark ? 0U : 1U;
    }
    place.endUnit = place.unit + line.entry.length;
    return place;
}

Findings::Rules IgnoredOn(const TextDocument& document, const Line& line) {
    Findings::Rules rules;
    for (const auto part : {line.before, line.after}) {
        for (const auto& ignored : ParseAnnotations(document.Comment(line, part)).ignored)
            if (const auto rule = FindRule(ignored.name))
                rules.set(static_cast<std::size_t>(*rule));
    }
    return rules;
}

}  // namespace

std::vector<Finding> CheckSources(const std::string& dictionary, const SourceTexts& sources,
                                  const Findings::Rules& disabled) {
    return CheckSources(dictionary, ReadTextDocument(dictionary), sources, disabled);
}

std::vector<Finding> CheckSources(const std::string& dictionary, const TextDocument& document,
                                  const SourceTexts& sources, const Findings::Rules& disabled) {
    Findings inDictionary(disabled);
    for (std::size_t i = 0; i < document.Lines().size(); ++i) {
        const Line& line = document.Lines()[i];
        if (!line.quoted || document.Find(line.key) != i) continue;
        const SourceText* const source = sources.Find(line.key);
        if (source == nullptr) {
            inDictionary.Add(Rule::kUnusedKey, PlaceOf(dictionary, document, line),
                             "no source uses the key " + ShowKey(line.key));
        } else if (source->hasText && !ShowTheSame(document.Value(line), source->text)) {
            inDictionary.Add(Rule::kDefaultText, PlaceOf(dictionary, document, line),
                             "the default text of " + ShowKey(line.key) + " is " +
                                 ShowRaw(source->text) + " at " + Show(source->place));
        } else {
            continue;
        }
        inDictionary.Ignore(line.number, IgnoredOn(document, line));
    }
    std::vector<Finding> found = inDictionary.Take();

    const auto add = [&](Rule rule, const SourceText& text, std::string why) {
        if (disabled[static_cast<std::size_t>(rule)]) return;
        found.push_back({rule, text.place, std::move(why)});
    };
    for (const auto* list : {&sources.Texts(), &sources.Bare()}) {
        for (const SourceText& text : *list) {
            if (text.ignored || document.Find(text.key).has_value()) continue;
            add(Rule::kUnextractedKey, text, dictionary + " lacks the key " + ShowKey(text.key));
        }
    }
    for (const SourceText& text : sources.Conflicts())
        add(Rule::kDefaultText, text, DescribeConflict(text, *sources.Find(text.key)));
    return found;
}

}  // namespace tool
