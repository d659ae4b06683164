#include <algorithm>

#include "tools/base/Content.h"
#include "tools/base/EntryLine.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

std::string HeaderText(const Content& content) {
    std::string text = content.form;
    if (!content.locale.empty()) text += ", locale " + content.locale;
    if (content.idBase != 0) text += ", id base " + std::to_string(content.idBase);
    // What would open the entry's text early.
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < 0x20 || c == '"' || c == '\\'; }, '?');
    return text + ", " + std::to_string(content.entries.size()) + " entries";
}

std::string HeaderJson(const Content& content) {
    return R"({"form":)" + JsonString(content.form) + R"(,"locale":)" + JsonString(content.locale) +
           R"(,"idBase":)" + std::to_string(content.idBase) + R"(,"entries":)" +
           std::to_string(content.entries.size()) + "}\n";
}

// What dump writes compiles back to the same dictionary.
void RefuseWhatTextCannotHold(const Content& content) {
    const auto unkeyed = std::ranges::count(content.entries, false, &Entry::keyed);
    const auto marked = std::ranges::count_if(
        content.entries, [](const Entry& entry) { return !entry.accelerator.IsEmpty(); });
    if (unkeyed == 0 && marked == 0) return;
    throw Failure(content.name + ": " +
                  (unkeyed != 0 ? std::to_string(unkeyed) + " entries without keys"
                                : std::to_string(marked) + " accelerator strings") +
                  ", which a text dictionary cannot hold; use --format=json");
}

std::string TextLine(const Entry& entry) {
    return Utf8(EntryLine(entry.key, UnitsOf(entry.value))) + '\n';
}

std::string JsonLine(const Entry& entry) {
    std::string line = "{";
    if (entry.keyed) line += R"("key":)" + JsonKey(entry.key) + ',';
    line +=
        R"("id":)" + std::to_string(entry.id) + R"(,"value":)" + JsonString(UnitsOf(entry.value));
    if (!entry.accelerator.IsEmpty()) {
        line += R"(,"accelerator":)" + JsonString(UnitsOf(entry.accelerator));
    }
    return line + "}\n";
}

std::string Lines(const Content& content, const DumpOptions& options) {
    std::string lines;
    if (options.header && options.json) lines = HeaderJson(content);
    // A line of its own would be an entry; what stands ahead of the quotation mark is a comment.
    if (options.header && !options.json && !content.entries.empty()) {
        lines = HeaderText(content) + ": ";
    }
    Progress progress("dumping", options.file, content.entries.size());
    std::uint64_t done = 0;
    for (const Entry& entry : content.entries) {
        lines += options.json ? JsonLine(entry) : TextLine(entry);
        progress.Reach(++done);
    }
    return lines;
}

}  // namespace

int Dump(const DumpOptions& options) {
    Content content = Load(options.file);
    if (!content.tooLong.empty()) throw Failure(content.tooLong);
    if (!options.json) RefuseWhatTextCannotHold(content);
    if (options.sort) std::ranges::stable_sort(content.entries, {}, &Entry::key);
    WriteOutput(options.output, Lines(content, options));
    return kSuccess;
}

}  // namespace tool
