#pragma once
#include <map>
#include <string>
#include <vector>

#include "tools/base/Progress.h"
#include "tools/base/Text.h"
#include "tools/check/Findings.h"

namespace tool {

// What a version 2 file has room for, of a key and of a value.
inline constexpr std::size_t kMostBytes = 65535;
// A merge of version 2 files does not find longer keys.
inline constexpr std::size_t kMergeableKeyBytes = 1023;

// The entry of a key as the loader has it at the end of the file.
struct Definition {
    Place place;  // of the key; in binary files the file alone
    Text value;
    bool isMessage = false;  // by its own line
    // The value as it is written, where that is not the value itself, and the column it begins at.
    std::vector<unsigned short> written = {};
    std::uint64_t valueColumn = 0;
};

// A file that `check` has gone through.
struct CheckedFile {
    std::string name;
    std::map<std::string, Definition> entries;  // those that a look-up of their key finds
    std::string locale = {};                         // as the file itself says, empty where it does not
    bool usable = true;  // false where the entries are not what the author wrote, or are none
};

// What the loader would trip over or silently change in a file of either kind.
CheckedFile CheckFile(const std::string& name, const std::string& bytes, Findings& findings);
CheckedFile CheckText(const std::string& name, const std::string& bytes, Findings& findings,
                      Progress& progress);
CheckedFile CheckBinary(const std::string& name, const std::string& bytes, Findings& findings);

// Accelerators that entries beside each other share.
void CheckAccelerators(const CheckedFile& file, Findings& findings);
// The values whose own lines say that they are message patterns.
void CheckMessages(const CheckedFile& file, Findings& findings);
// What tells a translation from its reference. What a line of the reference has ignored (a name
// that is not translated) is ignored in its translations.
void CheckAgainst(const CheckedFile& file, const CheckedFile& reference,
                  const Findings& ofReference, Findings& findings);

}  // namespace tool
