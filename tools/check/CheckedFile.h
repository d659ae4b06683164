#pragma once
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/base/Text.h"
#include "tools/check/Findings.h"

namespace tool {

// The space in a version 2 file for a key and for a value.
inline constexpr std::size_t kMostBytes = 65535;
// A merge of version 2 files does not find longer keys.
inline constexpr std::size_t kMergeableKeyBytes = 1023;

// A part of a line: indexes into the units of its file.
struct Part {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// The entry of a key that the loader keeps at the end of the file. Parts are those of a text file;
// in binary files they are empty and the line is 0.
struct Definition {
    std::uint64_t line = 0;
    std::size_t lineBegin = 0;  // in the units of the file
    Part key;
    Part written;   // the value
    Part firstKey;  // of the first entry with the same bytes as key
    std::uint64_t firstLine = 0;
    std::size_t firstLineBegin = 0;
    Text value;
    bool isWhole = true;    // false where the value is not the text that the author wrote
    bool isSpoilt = false;  // a finding of the line says that its key is not the intended one
    bool untranslated = false;
    bool stale = false;
    bool isMessage = false;  // by its own line
    std::string from;        // as in Annotations
};

// A file that `check` has read.
struct CheckedFile {
    using Entries = std::unordered_map<std::string, Definition>;

    std::string name;
    Entries entries = {};     // those that a look-up of their key finds
    std::string locale = {};  // from the file itself, empty when it has none
    bool usable = true;  // false when the entries are not what the author wrote, or there are none
    bool endsEarly = false;  // at a zero
    // Lines with a finding that also explains why keys are missing, as UTF-8.
    std::vector<std::string> spoiltLines = {};
    std::vector<unsigned short> units = {};  // of all lines of a text file, one after the other

    Units UnitsOf(Part part) const {
        return Units(units).subspan(part.begin, part.end - part.begin);
    }
    // Both ends are in the line.
    Place PlaceOf(std::uint64_t line, std::size_t lineBegin, Part part) const;
    // The entry's key; in binary files the file alone.
    Place PlaceOf(const Definition& entry) const { return PlaceOf(entry, entry.key); }
    Place PlaceOf(const Definition& entry, Part part) const {
        return PlaceOf(entry.line, entry.lineBegin, part);
    }
    // In the order of the file; for binary files in the order of the keys.
    std::vector<const Entries::value_type*> InOrder() const;
};

// Units of the converted value, as places in the written one; in binary files the file alone.
Place PlaceInValue(const CheckedFile& file, const Definition& entry, std::size_t begin,
                   std::size_t end);

// Accelerators of a file's entries: missing, several, or shared with a neighbouring entry.
void CheckAccelerators(const CheckedFile& file, Findings& findings);
// The values whose own lines mark them as message patterns.
void CheckMessages(const CheckedFile& file, Findings& findings);
// How a translation differs from its reference. A rule that a line of the reference ignores (a name
// that is not translated) is also ignored in its translations.
void CheckAgainst(const CheckedFile& file, const CheckedFile& reference,
                  const Findings& ofReference, Findings& findings);

}  // namespace tool
