#include "tools/exchange/Exchange.h"

#include "tools/base/Annotations.h"
#include "tools/exchange/ShownText.h"

namespace tool {

namespace {

using Line = TextDocument::Line;

Annotations AnnotationsOf(const TextDocument& document, const Line& line) {
    return ParseAnnotations(document.Comment(line, line.before),
                            document.Comment(line, line.after));
}

void AddComments(const TextDocument& document, const Line& line, std::vector<std::string>& into) {
    for (const TextDocument::Part part : {line.before, line.after}) {
        if (part.length == 0) continue;
        std::string text = ForPeople(document.Comment(line, part));
        for (char& c : text)
            if (static_cast<unsigned char>(c) < ' ') c = ' ';
        if (!text.empty()) into.push_back(std::move(text));
    }
}

// The state after the next `update`, whether or not it has seen the latest reference.
State StateOf(const TextDocument& translation, const Line& line, const Unit& unit,
              const std::string& digest) {
    if (unit.target.empty()) return State::kUntranslated;
    const Annotations marks = AnnotationsOf(translation, line);
    if (marks.untranslated) {
        const bool isReferences =
            unit.target == unit.source || ReferenceDigest(translation.Value(line)) == marks.from;
        return isReferences ? State::kUntranslated : State::kNeedsReview;
    }
    const bool isStale = marks.stale || (!marks.from.empty() && marks.from != digest);
    return isStale ? State::kNeedsReview : State::kTranslated;
}

}  // namespace

Unit MakeBareUnit(const TextDocument& reference, const Line& wanted,
                  const TextDocument& translation, const Line* present) {
    Unit unit;
    unit.key = ShownKey(wanted.key);
    unit.source = ShownText(reference.Value(wanted));
    if (present == nullptr) return unit;
    unit.target = ShownText(translation.Value(*present));
    unit.state = StateOf(translation, *present, unit, ReferenceDigest(reference.Value(wanted)));
    return unit;
}

Unit MakeUnit(const TextDocument& reference, const Line& wanted, const TextDocument& translation,
              const Line* present) {
    Unit unit = MakeBareUnit(reference, wanted, translation, present);
    AddComments(reference, wanted, unit.notes);
    if (AnnotationsOf(reference, wanted).message) unit.notes.emplace_back("message pattern");
    if (present != nullptr) AddComments(translation, *present, unit.comments);
    if (unit.state == State::kUntranslated) unit.target.clear();
    return unit;
}

}  // namespace tool
