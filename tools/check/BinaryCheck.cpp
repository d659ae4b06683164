#include "tools/check/BinaryCheck.h"

#include "tools/base/Progress.h"

namespace tool {

namespace {

using lexon_private::ImageFault;

// Finds what breaks look-ups of a binary file's entries.
class EntryCheck {
public:
    EntryCheck(CheckedFile& checkedFile, Findings& findingsOfFile)
        : file(checkedFile), findings(findingsOfFile) {}

    void Check(const BinaryEntry& entry) {
        if (!entry.view.keyed) return;
        const std::string key(entry.view.key.begin(), entry.view.key.end());
        Text value(entry.view.value.data(), entry.view.value.size());
        CheckLengths(key, 2 * value.GetLength());
        if (!entry.decoded) {
            Add(Rule::kInvalidText, "the value of the key " + ShowKey(key) +
                                        " is not text of the encoding and becomes empty");
        }
        if (!entry.found && !key.empty()) {
            Add(Rule::kUnreachableEntry, "an entry with the key " + ShowKey(key) +
                                             " that a look-up of the key does not find");
        }
        if (entry.found) file.entries[key].value = std::move(value);
    }

private:
    // Files of version 1 can contain longer texts than those that are written.
    void CheckLengths(const std::string& key, std::size_t valueBytes) {
        if (key.size() <= kMergeableKeyBytes && valueBytes <= kMostBytes) return;
        constexpr std::size_t kShown = 60;
        const std::string name =
            "the key " + ShowKey(key.substr(0, kShown)) + (key.size() > kShown ? "..." : "");
        if (key.size() > kMostBytes) {
            Add(Rule::kKeyLength, name + " has " + std::to_string(key.size()) +
                                      " bytes: version 2 files have room for 65,535");
        } else if (key.size() > kMergeableKeyBytes) {
            Add(Rule::kLongKey, name + " has " + std::to_string(key.size()) +
                                    " bytes: a merge of binary files does not find it");
        }
        if (valueBytes > kMostBytes) {
            Add(Rule::kValueLength, "the value of " + name + " has " + std::to_string(valueBytes) +
                                        " bytes: version 2 files have room for 65,535");
        }
    }

    void Add(Rule rule, std::string text) {
        findings.Add(rule, {.file = file.name}, std::move(text));
    }

    CheckedFile& file;
    Findings& findings;
};

}  // namespace

bool CheckFault(const BinaryFile& binary, const std::string& name, Findings& findings) {
    const char* const quiet = "; none of its entries is loaded";
    if (binary.Fault() != ImageFault::kNone) {
        const bool isQuiet =
            binary.HeaderRead() && binary.IsVersion2() && !IsMalformed(binary.Fault());
        findings.Add(Rule::kMalformedBinary, {.file = name, .offset = binary.FaultOffset()},
                     std::string("refused: ") + Describe(binary.Fault()) +
                         (isQuiet ? quiet
                                  : "; the dictionary becomes invalid and the application shows "
                                    "all of its keys raw"));
    } else if (binary.NoneAliveAt().has_value()) {
        findings.Add(Rule::kMalformedBinary, {.file = name, .offset = binary.NoneAliveAt()},
                     std::string("the number of living entries is 0") + quiet);
    } else {
        return true;
    }
    return false;
}

CheckedFile CheckBinary(const std::string& name, const std::string& bytes, Findings& findings) {
    CheckedFile file{.name = name};
    const Progress progress("checking", name);
    const BinaryFile binary(bytes);
    file.locale = binary.Header().locale.value_or("");
    EntryCheck entries(file, findings);
    binary.ForEachEntry([&](const BinaryEntry& entry) { entries.Check(entry); });
    file.usable = CheckFault(binary, name, findings);
    return file;
}

}  // namespace tool
