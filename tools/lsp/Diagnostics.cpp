#include "tools/extract/SourceCheck.h"
#include "tools/lsp/Features.h"

namespace tool::lsp {

namespace {

constexpr std::size_t kMostShown = 1000;  // of one file

int SeverityOf(const Finding& finding) {
    switch (Info(finding.rule).severity) {
        case Severity::kError:
            return 1;
        case Severity::kWarning:
            return 2;
        case Severity::kNote:
            break;
    }
    return 3;
}

Json Plain(const Range& range, int severity, const std::string& text) {
    return {
        {"range", ToJson(range)}, {"severity", severity}, {"source", "wordlex"}, {"message", text}};
}

// The fault of the settings themselves.
Json SettingsFault(const OpenFile& file) {
    Json list = Json::array();
    try {
        ParseProject(file.path, file.text->Bytes(), RuleNames());
    } catch (const ProjectFailure& failure) {
        const auto line = static_cast<std::size_t>(failure.Line() == 0 ? 0 : failure.Line() - 1);
        const std::string text = failure.what();
        const std::string place = file.path + ':' + std::to_string(failure.Line()) + ": ";
        list.push_back(Plain({{line, 0}, {line + 1, 0}}, 1,
                             text.starts_with(place) ? text.substr(place.size()) : text));
    }
    return list;
}

void CheckDictionary(Workspace& workspace, OpenFile& file) {
    ProjectState& state = workspace.ProjectOf(file);
    const Project& project = state.project;
    const Reference* const reference =
        project.HasLanguage(file.path) ? workspace.ReferenceOf(state) : nullptr;
    const Findings::Rules disabled = RulesOf(project.disabled);
    const std::string name = workspace.ShortName(file);
    file.findings = CheckBytes(name, file.text->Bytes(), reference, disabled).findings;
    const bool isReference = !project.reference.empty() && file.path == project.reference;
    const SourceTexts* const sources = isReference ? workspace.SourcesOf(state) : nullptr;
    if (sources == nullptr) return;
    for (Finding& finding : CheckSources(name, file.text->Document(), *sources, disabled)) {
        // The others are about sources and are reported there.
        if (finding.place.file == name) file.findings.push_back(std::move(finding));
    }
}

}  // namespace

Json DiagnosticOf(Workspace& workspace, OpenFile& file, const Finding& finding) {
    const bool isElsewhere = !finding.missingFrom.empty();
    Json diagnostic = Plain(isElsewhere ? Range{} : file.text->RangeOf(finding.place),
                            SeverityOf(finding), finding.text);
    diagnostic["code"] = Info(finding.rule).name;
    if (!isElsewhere) return diagnostic;
    const TextFile* const reference = workspace.FileAt(workspace.ProjectOf(file).project.reference);
    if (reference == nullptr) return diagnostic;
    diagnostic["relatedInformation"] = Json::array(
        {{{"location",
           {{"uri", reference->Uri()}, {"range", ToJson(reference->RangeOf(finding.place))}}},
          {"message", "the entry of the reference"}}});
    return diagnostic;
}

Json Publish(Workspace& workspace, OpenFile& file) {
    file.isPublished = true;
    Json list = Json::array();
    if (file.kind == OpenFile::Kind::kSettings) {
        list = SettingsFault(file);
    } else if (file.kind == OpenFile::Kind::kDictionary) {
        CheckDictionary(workspace, file);
        for (const Finding& finding : file.findings) {
            if (list.size() == kMostShown) break;
            list.push_back(DiagnosticOf(workspace, file, finding));
        }
        if (file.findings.size() > kMostShown) {
            list.push_back(Plain({}, 3,
                                 std::to_string(file.findings.size() - kMostShown) +
                                     " more findings are not shown; wordlex check shows them all"));
        }
    }
    return {{"uri", file.text->Uri()}, {"version", file.version}, {"diagnostics", list}};
}

}  // namespace tool::lsp
