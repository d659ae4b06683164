#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>
#include <string_view>

#include "tools/base/EntryLine.h"
#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/check/Check.h"
#include "tools/check/Content.h"
#include "tools/verbs/Verbs.h"
#include "wordlex/catalog/IndexSection.h"

namespace tool {

namespace {

using lexon_private::Dictionary;
using lexon_private::EntryView;

// Checks the files before they are compiled.
class Checker {
public:
    explicit Checker(const Arguments& arguments)
        : disabled(RulesOf(arguments.All("disable"))),
          failOn(arguments.Get("fail-on") == "warning" ? Severity::kWarning : Severity::kError),
          printed(arguments.Has("quiet") ? failOn : Severity::kWarning),
          format(FormatOf(arguments.Get("format"), STDERR_FILENO)) {
        // The reference of the project is for translators. A build names its own.
        if (arguments.IsSetting("reference") || !arguments.Has("reference")) return;
        referenceName = arguments.Get("reference");
        reference = ReadReference(referenceName, ReadInput(referenceName));
    }

    // Prints the findings of the file; true when it may still be compiled.
    bool Passes(const std::string& name, const std::string& bytes) const {
        const bool isTranslation = reference.has_value() && !IsSameFile(name, referenceName);
        auto found =
            CheckBytes(name, bytes, isTranslation ? &*reference : nullptr, disabled).findings;
        std::erase_if(found, [this](const Finding& finding) {
            return Info(finding.rule).severity < printed;
        });
        std::cerr << Print(found, format);
        return !AnyAtOrAbove(found, failOn);
    }

private:
    Findings::Rules disabled;
    Severity failOn;
    Severity printed;  // the least that is
    Format format;
    std::string referenceName;
    std::optional<Reference> reference;
};

// The files as one dictionary. It is compact from the start, which keeps the order of the entries
// and their ids. It merges files as the application's dictionary does.
class Merge {
public:
    void Add(const std::string& name, const std::string& bytes) {
        const Kind kind = KindOf(bytes);
        RefuseHidden(name, kind);
        if (kind == Kind::kText) {
            Read(merged, name, bytes);
        } else if (kind == Kind::kVersion1) {
            AddLines(LoadChecked(name, bytes));
        } else {
            AddImage(LoadChecked(name, bytes), bytes);
        }
        compactSeen |= kind == Kind::kVersion2;
        lastName = name;
    }

    // A file has keys for all of its entries or for none.
    void RefuseMixed() const {
        std::size_t count = 0;
        std::size_t keyed = 0;
        merged.ForEachEntry([&](const EntryView& entry) {
            ++count;
            if (entry.keyed) ++keyed;
        });
        if (keyed == 0 || keyed == count) return;
        const std::size_t unkeyed = count - keyed;
        throw Failure(Counted(unkeyed, "entry", "entries") + " without keys " +
                      (unkeyed == 1 ? "does" : "do") +
                      " not fit into a dictionary of entries with keys; "
                      "use --no-keys");
    }

    Dictionary& Result() { return merged; }

private:
    // At the first version 2 file, the application's dictionary switches to its compact store and
    // no longer searches the other store.
    void RefuseHidden(const std::string& name, Kind kind) const {
        if (kind == Kind::kVersion2 && !compactSeen && !lastName.empty()) {
            throw Failure(name + ": the application would no longer see the entries of " +
                          lastName + " after this binary file; name binary files first");
        }
        if (kind == Kind::kVersion1 && compactSeen) {
            throw Failure(name +
                          ": the application would not see the entries of this old binary "
                          "file after a version 2 file; convert it by itself first");
        }
    }

    // Old binary files fill only the other store, so their entries are handled like text.
    void AddLines(const Content& content) {
        for (const Entry& entry : content.entries) {
            auto line = EntryLine(entry.key, UnitsOf(entry.value));
            line.push_back(0);
            merged.AddEntry(line.data());
        }
    }

    // An image whose id base does not follow the entries before it is silently skipped.
    void AddImage(const Content& content, const std::string& bytes) {
        const unsigned long count = merged.NumKeys();
        Read(merged, content.name, bytes);
        if (merged.NumKeys() == count && content.idBase != 0 && !content.entries.empty()) {
            throw Failure(content.name + ": its id base " + std::to_string(content.idBase) +
                          " does not follow the entries of the files before it; the application "
                          "would load none of it");
        }
        RefuseUnmerged(content);
    }

    // An image whose id base does follow is appended. When an earlier file has one of its keys,
    // both entries exist and look-ups return the first. Long keys, which are not merged, are a
    // warning.
    void RefuseUnmerged(const Content& content) {
        for (const Entry& entry : content.entries) {
            if (!CanBeAsked(entry) || entry.key.size() > kMergeableKeyBytes) continue;
            const unsigned short* units = nullptr;
            unsigned long length = 0;
            merged.LookupReturnUTF16Ptr(("$$$" + entry.key).c_str(), units, length, nullptr);
            if (std::ranges::equal(Units(units, length), UnitsOf(entry.value))) continue;
            throw Failure(content.name + ": its id base " + std::to_string(content.idBase) +
                          " makes the application append it instead of merging it: for the key " +
                          ShowKey(entry.key) +
                          " the application would keep the text of an earlier file");
        }
    }

    // Look-ups read a key up to its first "=" or NUL.
    static bool CanBeAsked(const Entry& entry) {
        return entry.keyed && !entry.key.empty() &&
               entry.key.find_first_of(std::string_view("=\0", 2)) == std::string::npos;
    }

    Dictionary merged{true};
    bool compactSeen = false;
    std::string lastName;
};

lexon::EndianT OrderOf(const std::string& name) {
    return name == "big"    ? lexon::EndianT::kBig
           : name == "host" ? lexon::EndianT::kHost
                            : lexon::EndianT::kLittle;
}

// The binary file of the dictionary.
std::string ImageOf(Dictionary& dictionary, const Arguments& arguments, std::uint32_t idBase) {
    const std::string& output = arguments.Get("output");
    const Progress progress("writing", output);
    std::ostringstream image;
    dictionary.Serialize(
        image, arguments.Has("no-keys") ? lexon::SaveType::kBinaryNoKeys : lexon::SaveType::kBinary,
        nullptr, OrderOf(arguments.Get("endian")), idBase);
    if (!image) {
        throw Failure(output +
                      ": more text than a version 2 file has room for, or than memory has");
    }
    std::string file = std::move(image).str();
    if (!arguments.Has("indexed")) return file;
    const std::string index = lexon::detail::MakeIndexSection(file);
    if (index.empty()) {
        throw Failure(output + ": too many keys collide for an index; leave out --indexed");
    }
    return file + index;
}

}  // namespace

int Compile(const Arguments& arguments) {
    const std::string& output = arguments.Get("output");
    if (output.empty()) throw UsageFailure("--output is required");
    const std::uint32_t idBase = arguments.Number("id-base").value_or(0);
    const std::string& locale = arguments.Get("locale");
    const Checker checker(arguments);
    Merge merge;
    bool good = true;
    for (const std::string& name : arguments.operands) {
        const std::string bytes = ReadInput(name);
        if (!checker.Passes(name, bytes)) {
            good = false;
        } else if (good) {
            merge.Add(name, bytes);
        }
    }
    if (!good) return kDifference;

    if (!arguments.Has("no-keys")) merge.RefuseMixed();
    if (!locale.empty()) merge.Result().Locale(locale.c_str());
    WriteOutput(output, ImageOf(merge.Result(), arguments, idBase));
    return kSuccess;
}

}  // namespace tool
