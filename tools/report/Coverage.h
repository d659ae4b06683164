#pragma once
// How complete translations are: `stats` prints it and `report` shows it. docs/authoring.md defines
// the states.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/base/Annotations.h"
#include "tools/base/Text.h"

namespace tool {

// The state of a text of the reference in a translation. The last one is for keys that the
// reference lacks.
enum class State : std::uint8_t {
    kTranslated,
    kIdentical,
    kUntranslated,
    kStale,
    kMissing,
    kObsolete
};
inline constexpr std::array<const char*, 6> kStateNames = {
    "translated", "identical", "untranslated", "stale", "missing", "obsolete"};

// A dictionary, text or binary, with the annotations of its lines.
// Invariant: keys are unique. `items` never changes, so pointers into it stay valid.
// Threads:   none; const is thread-safe.
class TextSet {
public:
    struct Item {
        std::string key;
        Text text;
        Annotations marks;   // in text dictionaries
        std::string digest;  // ReferenceDigest of the text, in a reference in text form
    };
    enum class Role : std::uint8_t { kReference, kTranslation };

    // Throws a Failure for a file of which the application would not load every line.
    TextSet(std::string fileName, Role role);
    TextSet(const TextSet&) = delete;
    TextSet& operator=(const TextSet&) = delete;
    ~TextSet() = default;

    const Item* Find(std::string_view key) const;

    std::string name;
    std::string form;    // "text, UTF-16, little-endian"
    std::string locale;  // from a binary file that has one
    std::uint32_t idBase = 0;
    std::size_t fileSize = 0;    // bytes
    std::size_t entryCount = 0;  // including entries of binary files without keys
    std::vector<Item> items;     // in the order of a text file

private:
    void AddText(const std::string& bytes, Role role);
    void AddBinary(const std::string& bytes);

    std::unordered_map<std::string_view, const Item*> byKey;
};

struct Coverage {
    std::array<std::size_t, kStateNames.size()> counts{};
    std::size_t keys = 0;                        // of the reference
    std::size_t wordsLeft = 0;                   // of the reference's texts that are not done
    std::vector<State> states;                   // of the reference's items
    std::vector<const TextSet::Item*> obsolete;  // of the translation

    std::size_t Count(State state) const { return counts[static_cast<std::size_t>(state)]; }
    std::size_t Done() const { return Count(State::kTranslated) + Count(State::kIdentical); }
};
Coverage Compare(const TextSet& reference, const TextSet& translation);

// In tenths of a percent, rounded down: only a complete translation has 1000. `whole` is not 0.
std::size_t Permille(std::size_t part, std::size_t whole);

// Counts the parts between white space that have a letter or a digit. Each Chinese or Japanese
// character is a word of its own.
std::size_t CountWords(Units text);
std::size_t CountWords(const TextSet& texts);

// The files without the reference and without the obsolete files of `update`, so that *.txt works.
std::vector<std::string> Translations(const std::vector<std::string>& files,
                                      const std::string& reference);

}  // namespace tool
