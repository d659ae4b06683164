#pragma once
// What a message pattern has places for, and the plural forms that a language needs.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wordlex/catalog/Catalog.h"

namespace lexon::detail {

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

struct PluralCategory {
    std::string name;
    std::optional<int> only;  // the one number of the category where it has no other
};
// The plural categories of a language, "other" included, in the order of CLDR. Empty for a language
// that is not known.
std::vector<PluralCategory> PluralCategories(const std::string& language, bool ordinal);

}  // namespace lexon::detail
