#pragma once
#include <string>
#include <vector>

#include "tools/base/Progress.h"
#include "tools/base/Text.h"
#include "tools/check/Check.h"
#include "wordlex/functionality/Dictionary.h"

namespace tool {

// Which store of the dictionary a file is loaded into, and which entries of other files it hides.
enum class Kind : std::uint8_t { kText, kVersion1, kVersion2 };
Kind KindOf(const std::string& bytes);
// Its encoding or version: "text, UTF-16, little-endian".
std::string FormOf(const std::string& bytes);

void Read(lexon_private::Dictionary& dictionary, const std::string& name, const std::string& bytes);

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
    std::string tooLong;         // see CheckUsable
    std::vector<Entry> entries;  // in the order of the file
};

// Checks a file before its use. Throws a Failure for one that the application would refuse.
// `tooLong` gets the first entry that a binary file would cut, with its place, or "".
CheckedFile CheckUsable(const std::string& name, const std::string& bytes, Findings& findings,
                        std::string* tooLong = nullptr);

// Throws what CheckUsable does.
Content Load(const std::string& name);
Content Load(const std::string& name, const std::string& bytes);

// The name of an entry in messages: its key, or its id when it has no key.
std::string ShowName(const Entry& entry);

}  // namespace tool
