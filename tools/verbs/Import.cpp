#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "tools/base/Annotations.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/base/TextDocument.h"
#include "tools/check/Check.h"
#include "tools/exchange/Exchange.h"
#include "tools/exchange/Po.h"
#include "tools/exchange/ShownText.h"
#include "tools/exchange/Xliff.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

using Line = TextDocument::Line;
// Finds the lines of a document by ShownKey(). The document outlives it.
class ShownKeys {
public:
    explicit ShownKeys(const TextDocument& ofDocument) : document(ofDocument) {
        for (const Line& line : document.Lines()) {
            std::string shown = ShownKey(line.key);
            if (shown != line.key) escaped.insert_or_assign(std::move(shown), &line);
        }
    }

    // The last line with the key, or null.
    const Line* Find(const std::string& shown) const {
        const auto other = escaped.find(shown);
        const Line* const line = other == escaped.end() ? nullptr : other->second;
        // A key that is shown as it is.
        const auto same = ShownKey(shown) == shown ? document.Find(shown) : std::nullopt;
        if (!same) return line;
        return std::max(line, &document.Lines()[*same], std::less());
    }

private:
    const TextDocument& document;
    std::unordered_map<std::string, const Line*> escaped;  // whose shown form is not the key
};

// Writes the units of one file into a translation.
class Importer {
public:
    Importer(std::string exchangeName, const std::string& dictionaryName,
             const std::string& nameOfReference)
        : source(std::move(exchangeName)),
          name(dictionaryName),
          referenceName(nameOfReference),
          reference(ReadTextDocument(referenceName)),
          document(ReadTextDocument(name)),
          wanted(reference),
          present(document) {}

    void Take(const Exchange& exchange) {
        std::unordered_map<std::string_view, std::uint64_t> seen;
        seen.reserve(exchange.units.size());
        for (const Unit& unit : exchange.units) {
            const auto [first, isNew] = seen.try_emplace(unit.key, unit.line);
            if (!isNew) {
                throw Failure(Place(unit.line) + ": a second text for the key \"" + unit.key +
                              "\", the first is in line " + std::to_string(first->second) +
                              "; keep one of them");
            }
            TakeUnit(unit);
        }
        if (!changed.empty()) CheckTexts();
        std::ranges::stable_sort(problems, {}, &Problem::line);
    }

    // Prints the faults of the texts. False when one of them is an error.
    bool Report() const {
        bool good = true;
        for (const Problem& problem : problems) {
            std::cerr << Place(problem.line) << ": " << Name(problem.severity) << ": "
                      << problem.text << '\n';
            good &= problem.severity != Severity::kError;
        }
        return good;
    }

    std::string Result() const { return document.Bytes(); }
    bool Changes() const { return document.HasEdits(); }

    // "FILE: 2 translated, 1 stale"
    std::string Summary() const {
        static constexpr const char* kWhat[] = {"untranslated", "stale", "translated"};
        static_assert(std::size(kWhat) == kStates);
        std::string text;
        for (std::size_t i = kStates; i-- > 0;) {
            if (counts[i] == 0) continue;
            text += (text.empty() ? "" : ", ") + std::to_string(counts[i]) + ' ' + kWhat[i];
        }
        return name + ": " + (text.empty() ? "nothing new" : text) + '\n';
    }

private:
    static constexpr std::size_t kStates = 3;

    struct Problem {
        std::uint64_t line;
        Severity severity;
        std::string text;
    };

    std::string Place(std::uint64_t line) const { return source + ':' + std::to_string(line); }

    void TakeUnit(const Unit& unit) {
        const Line* const there = wanted.Find(unit.key);
        const Line* const here = present.Find(unit.key);
        const bool isEmpty = unit.state == State::kUntranslated;
        if (there == nullptr || here == nullptr) {
            if (!isEmpty && !IsThere(unit, here)) ReportAbsent(unit, there != nullptr);
            return;
        }
        const Line& referenceLine = *there;
        const Line& line = *here;
        const Unit now = MakeBareUnit(reference, referenceLine, document, &line);
        const std::string& shown = now.target;
        if (isEmpty) {
            if (now.state == State::kUntranslated || shown == now.source) return;
            document.SetValue(line, reference.Value(referenceLine));
            return Mark(unit, line, referenceLine, State::kUntranslated);
        }
        const bool isCurrent = unit.source == now.source;
        const bool isSame = unit.target == shown;
        const State state =
            isCurrent && unit.state == State::kTranslated ? unit.state : State::kNeedsReview;
        // A translation without changes keeps its state.
        const bool wasTranslated =
            now.state == State::kTranslated && unit.state == State::kTranslated;
        if (isSame && (now.state == state || wasTranslated)) return;
        if (!isSame) document.SetValue(line, WrittenText(unit.target));
        if (!isCurrent) {
            problems.push_back({unit.line, Severity::kWarning,
                                "the reference's text of \"" + unit.key +
                                    "\" has changed since; the translation is marked stale"});
        }
        Mark(unit, line, referenceLine, state);
    }

    bool IsThere(const Unit& unit, const Line* here) const {
        return here != nullptr && ShownText(document.Value(*here)) == unit.target;
    }

    void ReportAbsent(const Unit& unit, bool inReference) {
        const std::string cure = inReference
                                     ? name + " does not have the key \"" + unit.key +
                                           "\"; run wordlex update --reference=" + referenceName +
                                           ' ' + name + " first"
                                     : referenceName + " does not have the key \"" + unit.key +
                                           "\"; remove the entry, or correct its key";
        problems.push_back({unit.line, Severity::kError, cure});
    }

    // An entry without room for a comment gets only its text.
    void Mark(const Unit& unit, const Line& line, const Line& referenceLine, State state) {
        ++counts[static_cast<std::size_t>(state)];
        changedKeys.insert(line.key);
        changedKeys.insert(referenceLine.key);
        if (state != State::kUntranslated) changed.emplace(line.number, unit.line);
        if (!line.quoted) return;
        const Annotations marks{state == State::kUntranslated,
                                state == State::kNeedsReview,
                                false,
                                ReferenceDigest(reference.Value(referenceLine)),
                                {}};
        document.SetComment(line, line.before, WithMarks(document.Comment(line, line.before), {}));
        document.SetComment(line, line.after, WithMarks(document.Comment(line, line.after), marks));
    }

    // A part of the file that has the same findings on the changed lines as the whole file: all
    // lines with one of their keys, all that may have an accelerator, and all that may belong to a
    // conflict. Most files have few of these.
    std::string Relevant(const TextDocument& of) const {
        const auto mayBegin = [](unsigned short unit) { return unit == u'&' || unit == u'#'; };
        return of.BytesOf([&](const Line& line) {
            if (!line.quoted || changedKeys.contains(line.key)) return true;
            return std::ranges::any_of(of.Value(line), mayBegin) &&
                   of.Find(line.key) == static_cast<std::size_t>(&line - of.Lines().data());
        });
    }

    // The lines of the result are those of the dictionary: an import neither adds nor removes any.
    void CheckTexts() {
        const auto checkedReference = ReadReference(referenceName, Relevant(reference));
        for (const Finding& finding :
             CheckBytes(name, Relevant(document), &checkedReference).findings) {
            const auto line = changed.find(finding.place.line);
            // The file's own mark, and the states, which the import counts.
            const bool isOther = finding.rule == Rule::kUtf8Mark || finding.rule == Rule::kStale ||
                                 finding.rule == Rule::kUntranslated;
            if (finding.place.file != name || line == changed.end() || isOther) continue;
            problems.push_back({line->second, Info(finding.rule).severity,
                                finding.text + " [" + Info(finding.rule).name + ']'});
        }
    }

    std::string source;
    std::string name;
    std::string referenceName;
    TextDocument reference;
    TextDocument document;
    ShownKeys wanted;   // in the reference
    ShownKeys present;  // in the dictionary
    // Maps changed lines of the dictionary to the lines of the source with their texts.
    std::map<std::uint64_t, std::uint64_t> changed;
    std::unordered_set<std::string_view> changedKeys;  // in either file
    std::vector<Problem> problems;
    std::array<std::size_t, kStates> counts{};
};

}  // namespace

int Import(const Arguments& arguments) {
    const std::string& source = arguments.operands[0];
    const std::string& name = arguments.operands[1];
    if (!arguments.Has("reference")) throw UsageFailure("--reference is required");
    const std::string& output = arguments.Has("output") ? arguments.Get("output") : name;
    const std::string shownSource = source == "-" ? "standard input" : source;
    const std::string bytes = ReadInput(source);
    const std::string& format = arguments.Get("format");
    const bool isXliff = format.empty() ? LooksLikeXml(bytes) : format == "xliff";
    std::optional<Progress> progress(std::in_place, "importing", source);
    const Exchange exchange = isXliff ? ReadXliff(shownSource, bytes) : ReadPo(shownSource, bytes);
    Importer importer(shownSource, name, arguments.Get("reference"));
    importer.Take(exchange);
    progress.reset();
    if (!importer.Report()) return kDifference;
    if (output != name || output == "-" || importer.Changes()) {
        WriteOutput(output, importer.Result());
    }
    if (output != "-") WriteStandardOutput(importer.Summary());
    return kSuccess;
}

}  // namespace tool
