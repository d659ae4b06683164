#include <algorithm>

#include "tools/check/Content.h"
#include "tools/lsp/Features.h"

namespace tool::lsp {

namespace {

constexpr std::uint32_t kNoId = 0xFFFFFFFF;

// A text between fences longer than any in it.
std::string Fenced(const std::string& text) {
    std::size_t longest = 2;
    std::size_t run = 0;
    for (const char c : text) {
        run = c == '`' ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    const std::string fence(longest + 1, '`');
    return fence + "text\n" + text + '\n' + fence + '\n';
}

// The id of an entry when the application loads only this file.
std::optional<std::uint32_t> IdOf(const TextFile& file, const std::string& key) {
    try {
        const Content content = Load("", file.Bytes());
        const auto found = std::ranges::find(content.entries, key, &Entry::key);
        if (found != content.entries.end() && found->id != kNoId) return found->id;
    } catch (const Failure&) {  // the application refuses the file
    }
    return std::nullopt;
}

std::string PlaceOf(const std::string& name, const Range& range) {
    return name + ':' + std::to_string(range.start.line + 1);
}

class Writer {
public:
    explicit Writer(bool asMarkdown) : markdown(asMarkdown) {}

    void Title(const std::string& key) { text += markdown ? Fenced(key) : key + '\n'; }
    void Value(const std::string& label, const std::string& value) {
        text += markdown ? label + "\n\n" + Fenced(value) : label + '\n' + value + '\n';
        text += '\n';
    }
    void Line(const std::string& line) { text += line + (markdown ? "\n\n" : "\n"); }
    // `uri` with the line of the place.
    std::string Link(const std::string& place, const std::string& uri, std::size_t line) const {
        if (!markdown) return place;
        return "[" + place + "](" + uri + "#L" + std::to_string(line + 1) + ")";
    }

    Json Contents() const {
        return {{"kind", markdown ? "markdown" : "plaintext"}, {"value", text}};
    }

private:
    bool markdown;
    std::string text;
};

}  // namespace

Json Hover(Workspace& workspace, const Json& params, bool markdown) {
    OpenFile& file = workspace.Get(params.at("textDocument").at("uri").get<std::string>());
    const auto found = workspace.KeyAt(file, PositionFrom(params.at("position")));
    if (!found.has_value()) return nullptr;

    Writer writer(markdown);
    writer.Title("$$$" + Utf8(UnitsOf(FromUtf8(found->key))));
    const ProjectState& state = workspace.ProjectOf(file);
    const TextFile::Line* shown = nullptr;
    if (found->line != nullptr) {
        const TextDocument& document = file.text->Document();
        shown = &document.Lines()[document.Find(found->key).value_or(0)];
        writer.Value("The application shows:", Utf8(UnitsOf(document.Converted(*shown))));
        if (shown != found->line) {
            writer.Line("This entry has no effect: the one in line " +
                        std::to_string(shown->number) + " replaces it.");
        }
        if (const auto id = IdOf(*file.text, found->key)) {
            writer.Line("Id " + std::to_string(*id));
        }
    }
    std::string others;
    for (const KeyUse& use : workspace.UsesOf(file, found->key, true)) {
        if (use.line == found->line && found->line != nullptr) continue;
        const std::string name = Workspace::ShortName(state, use.path);
        const std::string place = PlaceOf(name, use.range);
        const std::string link = writer.Link(place, use.file->Uri(), use.range.start.line);
        const bool isReference = use.path == state.project.reference && use.line != nullptr;
        if (isReference && use.file != file.text.get()) {
            writer.Value("Reference, " + link + ":",
                         Utf8(UnitsOf(use.file->Document().Converted(*use.line))));
        } else if (use.file != file.text.get() || use.line != nullptr) {
            others += (others.empty() ? "" : ", ") + link;
        }
    }
    if (!others.empty()) writer.Line("Also in " + others);
    return {{"contents", writer.Contents()}, {"range", ToJson(found->range)}};
}

}  // namespace tool::lsp
