#pragma once
// Fills message patterns with ICU; patterns are parsed once.
#include <unicode/locid.h>

#include <cstddef>
#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/MessagePattern.h"

namespace lexon::detail {

class LanguageFormats;
class ParsedMessage;

// Whether ICU has data of the language. For any other it uses the environment's.
bool IsKnownLanguage(const icu::Locale& locale);
// The parsed patterns of one language.
// Lives as long as the process.
// Threads: all members may be called at once.
class MessageCache {
public:
    // Starts again at this number: patterns are the texts of a program, not its data.
    static constexpr std::size_t kMostMessages = 16384;

    // Never null.
    std::shared_ptr<ParsedMessage> Get(std::u16string_view pattern, const icu::Locale& locale);

private:
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
