#include <filesystem>
#include <iostream>
#include <vector>

#include "tools/base/Annotations.h"
#include "tools/base/EntryLine.h"
#include "tools/base/Files.h"
#include "tools/base/OrderedMerge.h"
#include "tools/base/TextDocument.h"
#include "tools/extract/SourceTexts.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

// A dictionary of all entries, grouped by source. In UTF-16, which has every character whatever the
// encoding of 8-bit files is.
TextDocument AsDocument(const SourceTexts& sources) {
    std::vector<unsigned short> units{0xFEFF};
    const std::string* file = nullptr;
    for (const SourceText& text : sources.Texts()) {
        if (file != nullptr && *file != text.place.file) units.push_back(u'\n');
        file = &text.place.file;
        units.push_back(u'"');
        AppendKey(units, text.key);
        units.push_back(u'=');
        AppendWritten(units, text.text);
        units.push_back(u'"');
        units.push_back(u'\n');
    }
    std::string bytes;
    for (const unsigned short unit : units)
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return TextDocument(std::move(bytes));
}

// "FILE: 2 added, 1 changed, 3 not in the sources"
std::string Summary(const std::string& name, std::size_t added, std::size_t changed,
                    std::size_t unused) {
    std::string text;
    const auto count = [&text](std::size_t number, const char* what) {
        if (number != 0) (text += text.empty() ? "" : ", ") += std::to_string(number) + what;
    };
    count(added, " added");
    count(changed, " changed");
    count(unused, " not in the sources");
    return name + ": " + (text.empty() ? "up to date" : text) + '\n';
}

}  // namespace

int Extract(const Arguments& arguments) {
    // Without --update the dictionary would lose its comments, so only a named file is replaced.
    const bool named = arguments.Has("output") || !arguments.Has("update");
    const std::string& output = named ? arguments.Get("output") : arguments.project.reference;
    if (output.empty()) throw UsageFailure("--output is required");
    const SourceTexts sources(arguments.operands);
    for (const SourceText& text : sources.Conflicts()) {
        const SourceText& first = *sources.Find(text.key);
        std::cerr << "wordlex: " << Show(text.place) << ": " << DescribeConflict(text, first)
                  << '\n';
    }
    if (!sources.Conflicts().empty()) return kFailure;

    const bool update = arguments.Has("update") && std::filesystem::exists(output);
    const TextDocument extracted = AsDocument(sources);
    TextDocument document = update ? ReadTextDocument(output) : TextDocument("");
    std::size_t unused = 0;
    for (std::size_t i = 0; i < document.Lines().size(); ++i) {
        const TextDocument::Line& line = document.Lines()[i];
        if (!line.quoted || document.Find(line.key) != i) continue;
        if (sources.Find(line.key) == nullptr) ++unused;
    }
    std::size_t added = 0;
    std::size_t changed = 0;
    MergeInOrder(
        document, extracted,
        [&](const TextDocument::Line& line, std::size_t i) {
            const Units text = extracted.Value(extracted.Lines()[i]);
            if (ShowTheSame(document.Value(line), text)) return;
            document.SetValue(line, text);
            ++changed;
        },
        [&](std::size_t i) {
            const TextDocument::Line& line = extracted.Lines()[i];
            ++added;
            return MakeLine({}, extracted.UnitsOfPart(line, line.entry), {});
        });
    if (!update || document.HasEdits()) WriteOutput(output, document.Bytes());
    if (update) WriteStandardOutput(Summary(output, added, changed, unused));
    return kSuccess;
}

}  // namespace tool
