#pragma once
#include <string>
#include <vector>

#include "tools/base/Text.h"
#include "tools/check/CheckedFile.h"
#include "wordlex/functionality/Dictionary.h"

namespace tool {

// Which store of the dictionary a file is loaded into, and which entries of other files it hides.
enum class Kind : std::uint8_t { kText, kVersion1, kVersion2 };
Kind KindOf(const std::string& bytes);
// Its encoding or version: "text, UTF-16, little-endian".
std::string FormOf(const std::string& bytes);

// Loads a file that was checked already.
void Read(lexon_private::Dictionary& dictionary, const std::string& name, const std::string& bytes);
// Loads a file. Throws a Failure with the place if the application would refuse the file.
// Costs: hardly more than the loading. Only a file that is refused goes through all checks.
void ReadUsable(lexon_private::Dictionary& dictionary, const std::string& name,
                const std::string& bytes);

struct Entry {
    std::uint32_t id;  // all bits set when the dictionary has none
    bool keyed;
    std::string key;
    Text value;
    Text accelerator;
};

// What the application gets from one file: every key once, as look-ups find it.
struct Content {
    std::string name;
    Kind kind = Kind::kText;
    std::string form;    // "text, UTF-16, little-endian"
    std::string locale;  // empty when there is none
    std::uint64_t fileSize = 0;
    std::uint32_t idBase = 0;    // of a version 2 file
    std::vector<Entry> entries;  // as they are written
    std::string tooLong = {};    // the first entry that a binary file would cut, with its place
};

// The file with the places of its entries. Throws what ReadUsable does.
CheckedFile CheckUsable(const std::string& name, const std::string& bytes);

// Throws what ReadUsable does.
Content Load(const std::string& name);
Content Load(const std::string& name, const std::string& bytes);
// For a binary file that was checked already.
Content LoadChecked(const std::string& name, const std::string& bytes);

// The name of an entry in messages: its key, or its id when it has no key.
std::string ShowName(const Entry& entry);

}  // namespace tool
