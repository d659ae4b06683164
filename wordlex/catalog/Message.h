#pragma once
// Message patterns: what one has places for, and how one is filled. ICU parses and fills them.
#include <unicode/locid.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "wordlex/catalog/Catalog.h"

namespace lexon::detail {

class LanguageFormats;
class ParsedMessage;

// One use of an argument in a pattern, those inside other arguments included.
struct MessagePlace {
    std::u16string name;
    // What follows the name: "plural", "selectordinal", "select", "number", "date", ... or nothing.
    std::u16string type;
    std::vector<std::u16string> selectors;  // "one", "other", "=0", ... as written
    std::size_t position = 0;               // of the name in the pattern, in units
};

struct MessageFault {
    enum class Kind : std::uint8_t { kSyntax, kNoOther };
    Kind kind = Kind::kSyntax;
    std::size_t position = 0;  // in units
    std::string reason;        // in English, without the place
};

struct MessageShape {
    std::vector<MessagePlace> places;  // those before the fault where there is one
    std::optional<MessageFault> fault;
};

MessageShape ParseMessage(std::u16string_view pattern);

// Whether ICU has data of the language. It takes that of the environment for any other.
bool IsKnownLanguage(const icu::Locale& locale);
// The plural categories that a language has, "other" included, in the order of CLDR. Empty for a
// language that is not known.
std::vector<std::string> PluralCategories(const std::string& language, bool ordinal);

// The patterns that one language has filled, parsed.
// Lives as long as the process.
// Threads: all members may be called at once.
class MessageCache {
public:
    // Starts anew when it holds this many: patterns are the texts of a program, not its data.
    static constexpr std::size_t kMostMessages = 16384;

    // The result lives until this thread gets another one.
    ParsedMessage& Get(std::u16string_view pattern, const icu::Locale& locale);

private:
    std::shared_ptr<ParsedMessage> Share(std::u16string_view pattern, const icu::Locale& locale);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view text) const {
            return std::hash<std::u16string_view>()(text);
        }
    };
    std::shared_mutex lock;
    std::unordered_map<std::u16string, std::shared_ptr<ParsedMessage>, Hash, std::equal_to<>>
        messages;
};

std::u16string FillMessage(const LanguageFormats& formats, std::u16string_view pattern,
                           Arguments arguments, const FormatOptions& options);

}  // namespace lexon::detail
