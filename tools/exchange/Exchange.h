#pragma once
// The data exchanged with translators, for any file format.
#include <cstdint>
#include <string>
#include <vector>

#include "tools/base/TextDocument.h"

namespace tool {

enum class State : std::uint8_t { kUntranslated, kNeedsReview, kTranslated };

// An entry. All texts are UTF-8; source and target are in the form of ShownText().
struct Unit {
    std::string key;  // in the form of ShownKey()
    std::string source;
    std::string target;  // empty when it is untranslated
    State state = State::kUntranslated;
    std::vector<std::string> notes;     // of the reference
    std::vector<std::string> comments;  // of the translation
    bool obsolete = false;              // the reference no longer has the key
    std::uint64_t line = 0;             // of the target, in a file that was read
};

struct Exchange {
    std::string original;        // the name of the reference
    std::string sourceLanguage;  // "pt_BR", or empty when unknown
    std::string targetLanguage;
    std::vector<Unit> units;
};

// The unit for a line of the reference. `present` is its line in the translation, or null when the
// translation lacks the key.
Unit MakeUnit(const TextDocument& reference, const TextDocument::Line& wanted,
              const TextDocument& translation, const TextDocument::Line* present);
// The same without notes and comments. An untranslated unit has the text of its line as its target.
Unit MakeBareUnit(const TextDocument& reference, const TextDocument::Line& wanted,
                  const TextDocument& translation, const TextDocument::Line* present);

}  // namespace tool
