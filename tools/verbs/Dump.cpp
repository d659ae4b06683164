#include <algorithm>

#include "tools/base/EntryLine.h"
#include "tools/base/Files.h"
#include "tools/base/Json.h"
#include "tools/base/Progress.h"
#include "tools/base/Terminal.h"
#include "tools/check/Content.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

std::string HeaderText(const Content& content) {
    std::string text = content.form;
    if (!content.locale.empty()) text += ", locale " + content.locale;
    if (content.idBase != 0) text += ", id base " + std::to_string(content.idBase);
    // These would open the entry's text early.
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < 0x20 || c == '"' || c == '\\'; }, '?');
    return text + ", " + Counted(content.entries.size(), "entry", "entries");
}

std::string HeaderJson(const Content& content) {
    Json object{{"form", content.form}, {"locale", content.locale}, {"idBase", content.idBase}};
    object["entries"] = content.entries.size();
    return JsonLine(object);
}

// The output of dump compiles to the same dictionary.
void RefuseWhatTextCannotHold(const Content& content) {
    std::size_t unkeyed = 0;
    std::size_t marked = 0;
    for (const Entry& entry : content.entries) {
        if (!entry.keyed) ++unkeyed;
        if (!entry.accelerator.IsEmpty()) ++marked;
    }
    if (unkeyed == 0 && marked == 0) return;
    throw Failure(content.name + ": " +
                  (unkeyed != 0 ? Counted(unkeyed, "entry", "entries") + " without keys"
                                : Counted(marked, "accelerator string")) +
                  ", which a text dictionary cannot contain; use --format=json");
}

std::string TextLine(const Entry& entry) {
    return Utf8(EntryLine(entry.key, UnitsOf(entry.value))) + '\n';
}

std::string JsonEntry(const Entry& entry) {
    Json object;
    if (entry.keyed) PutKey(object, "key", entry.key);
    object["id"] = entry.id;
    PutText(object, "value", UnitsOf(entry.value));
    if (!entry.accelerator.IsEmpty()) PutText(object, "accelerator", UnitsOf(entry.accelerator));
    return JsonLine(object);
}

std::string Lines(const Content& content, bool json, bool header) {
    std::string lines;
    if (header && json) lines = HeaderJson(content);
    // A line of its own would be an entry. Text before the quotation mark is a comment.
    if (header && !json && !content.entries.empty()) {
        lines = HeaderText(content) + ": ";
    }
    Progress progress("dumping", content.name, content.entries.size());
    std::uint64_t done = 0;
    for (const Entry& entry : content.entries) {
        lines += json ? JsonEntry(entry) : TextLine(entry);
        progress.Reach(++done);
    }
    return lines;
}

}  // namespace

int Dump(const Arguments& arguments) {
    const bool json = arguments.Get("format") == "json";
    Content content = Load(arguments.operands.front());
    if (!content.tooLong.empty()) throw Failure(content.tooLong);
    if (!json) RefuseWhatTextCannotHold(content);
    if (arguments.Has("sort")) std::ranges::stable_sort(content.entries, {}, &Entry::key);
    const std::string& output = arguments.Get("output");
    WriteOutput(output, ForOutput(output, Lines(content, json, arguments.Has("header")),
                                  json ? ControlForm::kJson : ControlForm::kEntry));
    return kSuccess;
}

}  // namespace tool
