#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/ProjectFile.h"

namespace tool {

// The arguments after a verb. Choices are checked and lists are split. Options are named by their
// long names. A name that the verb's row in the table lacks throws std::out_of_range.
class Arguments {
public:
    std::vector<std::string> operands;

    bool Has(std::string_view option) const { return !All(option).empty(); }
    // The last value. Without one: the default of the option's row, "" when it has none.
    const std::string& Get(std::string_view option) const;
    // All values, in order. A flag has one empty value each time it is given.
    const std::vector<std::string>& All(std::string_view option) const;
    // The value as a number of 32 bits, or nothing when the option is not given. Throws a Failure
    // when the value is not such a number.
    std::optional<std::uint32_t> Number(std::string_view option) const;

    // Whether the value comes from the project file and not from the command line.
    bool IsSetting(std::string_view option) const { return Of(option).isSetting; }

    void Declare(const std::string& option, const std::string& fallback);
    void Add(const std::string& option, std::string value);
    // Adds values of the project file. Does nothing when the verb lacks the option or it is given.
    void AddSetting(const std::string& option, const std::vector<std::string>& values);

    Project project = {};  // empty without a project file

private:
    struct Values {
        std::string fallback;
        std::vector<std::string> given;
        bool isSetting = false;
    };
    const Values& Of(std::string_view option) const;

    std::map<std::string, Values, std::less<>> options;
};

}  // namespace tool
