#pragma once
// The places of a message pattern, and the plural forms that a language needs.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wordlex/catalog/Catalog.h"

namespace lexon::detail {

// One use of an argument in a pattern, also inside other arguments.
struct MessagePlace {
    std::u16string name;
    // The text after the name: "plural", "selectordinal", "select", "number", "date", ... or
    // nothing.
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
    std::vector<MessagePlace> places;  // those before the fault if there is one
    std::optional<MessageFault> fault;
};

MessageShape ParseMessage(std::u16string_view pattern);

struct PluralCategory {
    std::string name;
    std::optional<int> only;  // the only number of the category, if there is just one
};
// The plural categories of a language, including "other", in the order of CLDR. Empty for an
// unknown language.
std::vector<PluralCategory> PluralCategories(const std::string& language, bool ordinal);

}  // namespace lexon::detail
