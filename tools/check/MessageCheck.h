#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/check/CheckedFile.h"
#include "wordlex/catalog/MessagePattern.h"

namespace tool {

// Checks the values that are message patterns.
class MessageCheck {
public:
    // The file outlives the check.
    explicit MessageCheck(const CheckedFile& checkedFile);

    // Receives a fault: its rule, the unit of the value and a text.
    using Add = std::function<void(Rule, std::size_t, std::string)>;
    // Checks one entry by itself. Returns nothing when the pattern cannot be parsed.
    std::optional<lexon::detail::MessageShape> Check(const std::string& key,
                                                     const Definition& entry, const Add& add) const;
    // Compares the places of an entry with those of its reference.
    void Compare(const std::string& key, const lexon::detail::MessageShape& shape,
                 const lexon::detail::MessageShape& reference, const Add& add) const;

private:
    using Categories = std::vector<lexon::detail::PluralCategory>;

    void CheckForms(const std::string& key, const lexon::detail::MessagePlace& place,
                    const Categories& categories, const Add& add) const;

    std::string language;
    Categories cardinals;
    Categories ordinals;
};

}  // namespace tool
