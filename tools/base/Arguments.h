#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/ProjectFile.h"

namespace tool {

// What the command line has after a verb. Choices are checked and lists are split already.
// Options are asked for by their long names, and only those that the verb's row in the table has:
// any other name throws std::out_of_range.
class Arguments {
public:
    std::vector<std::string> operands;

    bool Has(std::string_view option) const { return !All(option).empty(); }
    // The value given last. Without one: the default of the option's row, "" when it has none.
    const std::string& Get(std::string_view option) const;
    // All values given, in their order; a flag has one empty value each time it is given.
    const std::vector<std::string>& All(std::string_view option) const;
    // The value as a number of 32 bits, or nothing when the option is not given. Throws a Failure
    // for what is not such a number.
    std::optional<std::uint32_t> Number(std::string_view option) const;

    // Whether the value comes from the project file and not from the command line.
    bool IsSetting(std::string_view option) const { return Of(option).isSetting; }

    void Declare(const std::string& option, const std::string& fallback);
    void Add(const std::string& option, std::string value);
    // Values of the project file, for an option that the verb may lack or that is given.
    void AddSetting(const std::string& option, const std::vector<std::string>& values);

    Project project = {};  // an empty one without a project file

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
