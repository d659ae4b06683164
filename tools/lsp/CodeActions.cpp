#include <unicode/normalizer2.h>

#include <algorithm>

#include "tools/base/Annotations.h"
#include "tools/base/EntryLine.h"
#include "tools/base/OrderedMerge.h"
#include "tools/base/Suggest.h"
#include "tools/lsp/Features.h"

namespace tool::lsp {

namespace {

using Line = TextFile::Line;

std::string Utf8Of(const std::vector<unsigned short>& units) { return Utf8(units); }

// The fixes for one finding of an open file.
class Fixes {
public:
    Fixes(Workspace& allFiles, OpenFile& openFile, const Finding& oneFinding, Json& actionList)
        : workspace(allFiles),
          file(openFile),
          document(openFile.text->Document()),
          finding(oneFinding),
          actions(actionList) {
        if (finding.missingFrom.empty()) {
            range = file.text->RangeOf(finding.place);
            if (const auto spot = file.text->SpotAt(range.start)) {
                line = spot->line;
                unit = spot->unit;
            }
        }
    }

    void Add() {
        if (finding.rule == Rule::kMissingKey) return AddMissing();
        if (line == nullptr || finding.place.line == 0) return;
        AddOfRule();
        AddIgnore();
    }

private:
    void AddOfRule() {
        switch (finding.rule) {
            case Rule::kDollarKey:
                return AddPrefix();
            case Rule::kTrailingBackslash:
                return Replace("Write the backslash as a number", range, "#{U+005C}\"");
            case Rule::kUnclosedQuote:
                return Insert("Close the quotation mark", file.text->LengthOf(*line), "\"");
            case Rule::kNoEquals:
                return Insert("Add \"=\"", unit, "=");
            case Rule::kBlankAtEquals:
                return AddForBlank();
            case Rule::kUnknownRule:
                return AddNearestRule();
            case Rule::kInnerPrefix:
                return AddForPrefix();
            case Rule::kUnknownEscape:
                return AddForEscape();
            case Rule::kHiddenCharacter:
                Replace("Remove the hidden character", range, "");
                return Replace("Write the hidden character as a number", range,
                               "#{" + CodePoint(UnitAt(unit)) + "}");
            case Rule::kDecomposed:
                return Compose();
            case Rule::kTrailingAmpersand:
                return Replace("Show the \"&\"", range, "&&");
            case Rule::kUntranslated:
            case Rule::kStale:
                return AddTranslated();
            case Rule::kDuplicateKey:
                return RemoveEarlier();
            case Rule::kCommentedEntry:
                return RemoveLines("Remove the entry", {line});
            case Rule::kObsoleteKey:
                return RemoveLines("Remove the entry, which the reference does not have", {line});
            case Rule::kUnusedKey:
                return RemoveLines("Remove the entry, which no source uses", {line});
            case Rule::kDefaultText:
                return TakeFromSource();
            default:
                return;
        }
    }

    void AddPrefix() {
        const Units entry = document.UnitsOfPart(*line, line->entry);
        const auto key = std::ranges::find_if(entry, [](unsigned short c) { return c != u'$'; });
        const auto count = static_cast<std::size_t>(key - entry.begin());
        Insert("Begin the key with \"$$$\"", line->entry.begin,
               std::string(count < 3 ? 3 - count : 0, '$'));
    }

    void AddForBlank() {
        const bool inValue = unit >= line->value.begin;
        Replace("Remove the blank", range, "");
        if (inValue) Replace("Keep the blank, written as an escape", range, "#{U+0020}");
    }

    void AddNearestRule() {
        const std::string written = Utf8(Between(unit, unit + Length()));
        const std::string nearest = Nearest(written, RuleNames());
        if (!nearest.empty()) Replace("Write " + nearest, range, nearest);
    }

    void AddForPrefix() {
        const Units before = Between(line->entry.begin, unit);
        const bool isBlank = std::ranges::all_of(
            before, [](unsigned short c) { return c == u' ' || c == u'\t' || c == 0x00A0; });
        if (isBlank) {
            Replace("Remove the blanks before the key",
                    file.text->RangeOf(*line, line->entry.begin, unit), "");
        }
    }

    void AddForEscape() {
        const unsigned short sign = UnitAt(unit);
        if (sign == u'#') {
            Replace("Show \"#{\" as it is", file.text->RangeOf(*line, unit, unit + 1), "#{U+0023}");
        } else {
            const std::string text = Utf8({&sign, 1});
            Insert("Show \"" + text + "\" as it is", unit, text);
        }
    }

    void Compose() {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Normalizer2* const form = icu::Normalizer2::getNFCInstance(status);
        if (U_FAILURE(status) || form == nullptr) return;
        const Units value = document.Value(*line);
        const std::u16string written(value.begin(), value.end());
        const icu::UnicodeString composed = form->normalize(
            icu::UnicodeString(written.data(), static_cast<int32_t>(written.size())), status);
        if (U_FAILURE(status)) return;
        std::string utf8;
        composed.toUTF8String(utf8);
        Replace("Write each letter and its accent as one character",
                file.text->RangeOf(*line, line->value), utf8);
    }

    void AddTranslated() {
        std::vector<Json> edits;
        for (const auto part : {line->before, line->after}) {
            const std::string comment = document.Comment(*line, part);
            Annotations marks;
            marks.from = ParseAnnotations(comment).from;
            const std::string changed = WithMarks(comment, marks);
            if (changed != comment) edits.push_back(Edit(file.text->RangeOf(*line, part), changed));
        }
        Action("Mark as translated", edits);
    }

    void RemoveEarlier() {
        std::vector<const Line*> earlier;
        for (const Line& other : document.Lines()) {
            if (&other == line) break;
            if (other.kind == TextDocument::Kind::kEntry && other.key == line->key) {
                earlier.push_back(&other);
            }
        }
        RemoveLines("Remove the earlier entry, which has no effect", earlier);
    }

    void TakeFromSource() {
        const SourceTexts* const sources = workspace.SourcesOf(workspace.ProjectOf(file));
        const SourceText* const source = sources == nullptr ? nullptr : sources->Find(line->key);
        if (source == nullptr || !source->hasText) return;
        std::vector<unsigned short> written;
        AppendWritten(written, source->text);
        Replace("Use the text of the source", file.text->RangeOf(*line, line->value),
                Utf8Of(written));
    }

    // Inserts the reference's entry, if the reference has it.
    void AddMissing() {
        const TextFile* const reference =
            workspace.FileAt(workspace.ProjectOf(file).project.reference);
        if (reference == nullptr || reference->IsBinary() || !finding.key.has_value()) return;
        const TextDocument& wanted = reference->Document();
        const auto at = wanted.Find(*finding.key);
        if (!at.has_value()) return;
        const Line& entry = wanted.Lines()[*at];
        Annotations marks;
        marks.untranslated = true;
        marks.from = ReferenceDigest(wanted.Value(entry));
        const Text comment = FromUtf8(WithMarks("", marks));
        const std::string text =
            Utf8Of(MakeLine({}, wanted.UnitsOfPart(entry, entry.entry), UnitsOf(comment)));
        const std::string title = "Add the entry " + ShowKey(*finding.key);
        for (std::size_t before = *at; before-- > 0;) {
            const auto present = document.Find(wanted.Lines()[before].key);
            if (!present.has_value()) continue;
            const Line& after = document.Lines()[*present];
            const Position end = file.text->RangeOf(after, 0, file.text->LengthOf(after)).end;
            return Replace(title, {end, end}, '\n' + text);
        }
        Replace(title, {}, text + '\n');
    }

    // Adds a comment that makes the line ignore the rule.
    void AddIgnore() {
        if (!line->quoted || IsFatal(finding.rule)) return;
        const std::string comment = document.Comment(*line, line->after);
        const std::string rule = Info(finding.rule).name;
        const bool isAnnotated = comment.find("wordlex:") != comment.npos;
        Insert("Ignore " + rule + " on this line", file.text->LengthOf(*line),
               (isAnnotated ? "; ignore " : "  wordlex: ignore ") + rule, false);
    }

    // Parts of the line

    unsigned short UnitAt(std::size_t at) const {
        const Units units = document.UnitsOfLine(*line);
        return at < units.size() ? units[at] : 0;
    }
    Units Between(std::size_t begin, std::size_t end) const {
        return document.UnitsOfLine(*line).subspan(begin, end - begin);
    }
    // Of the finding, in units.
    std::size_t Length() const {
        const std::size_t length = finding.place.endUnit - finding.place.unit;
        return std::min(length, file.text->LengthOf(*line) - unit);
    }

    // Actions

    static Json Edit(const Range& where, const std::string& text) {
        return {{"range", ToJson(where)}, {"newText", text}};
    }
    void Replace(const std::string& title, const Range& where, const std::string& text) {
        Action(title, {Edit(where, text)});
    }
    void Insert(const std::string& title, std::size_t at, const std::string& text,
                bool isPreferred = true) {
        Action(title, {Edit(file.text->RangeOf(*line, at, at), text)}, isPreferred);
    }
    void RemoveLines(const std::string& title, const std::vector<const Line*>& lines) {
        std::vector<Json> edits;
        for (const Line* removed : lines) {
            const Range whole = file.text->RangeOf(*removed, 0, file.text->LengthOf(*removed));
            edits.push_back(Edit({whole.start, {whole.end.line + 1, 0}}, ""));
        }
        Action(title, edits);
    }
    // The first action for a finding is preferred, unless it only hides the finding.
    void Action(const std::string& title, const std::vector<Json>& edits, bool isPreferred = true) {
        if (edits.empty()) return;
        Json action = {{"title", title},
                       {"kind", "quickfix"},
                       {"diagnostics", Json::array({DiagnosticOf(workspace, file, finding)})},
                       {"edit", {{"changes", {{file.text->Uri(), edits}}}}}};
        if (isPreferred && !hasPreferred) {
            action["isPreferred"] = true;
            hasPreferred = true;
        }
        actions.push_back(std::move(action));
    }

    Workspace& workspace;
    OpenFile& file;
    const TextDocument& document;
    const Finding& finding;
    Json& actions;
    Range range;
    const Line* line = nullptr;
    std::size_t unit = 0;  // of the finding's begin, in the line
    bool hasPreferred = false;
};

bool WantsQuickFixes(const Json& context) {
    const auto only = context.find("only");
    if (only == context.end() || !only->is_array()) return true;
    return std::ranges::any_of(*only,
                               [](const Json& kind) { return kind == "quickfix" || kind == ""; });
}

}  // namespace

Json CodeActions(Workspace& workspace, const Json& params) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const Range range = RangeFrom(params.at("range"));
    Json actions = Json::array();
    if (file.kind != OpenFile::Kind::kDictionary || !WantsQuickFixes(params.at("context"))) {
        return actions;
    }
    constexpr std::size_t kMostActions = 50;
    for (const Finding& finding : file.findings) {
        const Range place =
            finding.missingFrom.empty() ? file.text->RangeOf(finding.place) : Range{};
        if (place.end < range.start || range.end < place.start) continue;
        Fixes(workspace, file, finding, actions).Add();
        if (actions.size() >= kMostActions) break;
    }
    return actions;
}

}  // namespace tool::lsp
