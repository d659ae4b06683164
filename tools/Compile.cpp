#include <unistd.h>

#include <iostream>
#include <map>
#include <sstream>

#include "tools/Content.h"
#include "tools/EntryLine.h"
#include "tools/Files.h"
#include "tools/Verbs.h"

namespace tool {

namespace {

using lexon_private::Dictionary;
using lexon_private::EntryView;

// Prints what is wrong with the file; true when it may be compiled all the same.
bool Passes(const std::string& name, const std::string& bytes, const CompileOptions& options) {
    Findings findings(options.disabled);
    CheckFile(name, bytes, findings);
    auto found = findings.Take();
    std::erase_if(found, [](const Finding& finding) {
        return Info(finding.rule).severity < Severity::kWarning;
    });
    std::cerr << Print(found, options.json               ? Format::kJson
                              : MayColour(STDERR_FILENO) ? Format::kColouredText
                                                         : Format::kText);
    return !AnyAtOrAbove(found, Severity::kError);
}

// The files as one dictionary. It is compact from the start: that keeps the order of the entries,
// and their ids, and what is merged is what the application's dictionary would hold.
class Merge {
public:
    void Add(const std::string& name, const std::string& bytes) {
        const Kind kind = KindOf(bytes);
        RefuseHidden(name, kind);
        if (kind == Kind::kVersion1) {
            AddLines(Load(name, bytes));
        } else {
            Read(merged, name, bytes);
        }
        if (kind == Kind::kVersion2) RefuseUnmerged(Load(name, bytes));
        compactSeen |= kind == Kind::kVersion2;
        lastName = name;
    }

    Dictionary& Result() { return merged; }

private:
    // The application's dictionary moves to its compact store with the first version 2 file, and
    // looks into the other store no more.
    void RefuseHidden(const std::string& name, Kind kind) const {
        if (kind == Kind::kVersion2 && !compactSeen && !lastName.empty()) {
            throw Failure(name + ": the application would no longer see the entries of " +
                          lastName + " behind this binary file; name binary files first");
        }
        if (kind == Kind::kVersion1 && compactSeen) {
            throw Failure(name +
                          ": the application would not see the entries of this old binary "
                          "file behind a version 2 file; convert it by itself first");
        }
    }

    // Old binary files fill the other store only, so their entries go the way of text.
    void AddLines(const Content& content) {
        for (const Entry& entry : content.entries) {
            auto line = EntryLine(entry.key, UnitsOf(entry.value));
            line.push_back(0);
            merged.AddEntry(line.data());
        }
    }

    // An image whose id base does not follow the entries before it is passed over in silence. One
    // that was loaded has its texts in the dictionary now, long keys apart, which are not merged.
    void RefuseUnmerged(const Content& content) const {
        std::map<std::string, Text> now;
        merged.ForEachEntry([&now](const EntryView& entry) {
            now.emplace(std::string(entry.key.begin(), entry.key.end()),
                        Text(entry.value.data(), entry.value.size()));
        });
        for (const Entry& entry : content.entries) {
            const auto found = now.find(entry.key);
            const bool loaded = found != now.end() && (found->second == entry.value ||
                                                       entry.key.size() > kMergeableKeyBytes);
            if (loaded || !entry.keyed) continue;
            throw Failure(content.name +
                          ": its id base does not follow the entries of the files "
                          "before it; the application would load nothing of it");
        }
    }

    Dictionary merged{true};
    bool compactSeen = false;
    std::string lastName;
};

}  // namespace

int Compile(const CompileOptions& options) {
    Merge merge;
    bool good = true;
    for (const std::string& name : options.files) {
        const std::string bytes = ReadInput(name);
        if (!Passes(name, bytes, options)) {
            good = false;
        } else if (good) {
            merge.Add(name, bytes);
        }
    }
    if (!good) return kDifference;

    if (!options.locale.empty()) merge.Result().Locale(options.locale.c_str());
    std::ostringstream image;
    const Progress progress("writing", options.output);
    merge.Result().Serialize(
        image, options.noKeys ? lexon::SaveType::kBinaryNoKeys : lexon::SaveType::kBinary, nullptr,
        options.order, options.idBase);
    WriteOutput(options.output, image.view());
    return kSuccess;
}

}  // namespace tool
