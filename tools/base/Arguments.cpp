#include "tools/base/Arguments.h"

#include <charconv>
#include <stdexcept>

#include "tools/base/Files.h"

namespace tool {

const Arguments::Values& Arguments::Of(std::string_view option) const {
    const auto found = options.find(option);
    if (found != options.end()) return found->second;
    throw std::out_of_range("the verb has no option --" + std::string(option));
}

const std::string& Arguments::Get(std::string_view option) const {
    const Values& values = Of(option);
    return values.given.empty() ? values.fallback : values.given.back();
}

const std::vector<std::string>& Arguments::All(std::string_view option) const {
    return Of(option).given;
}

std::optional<std::uint32_t> Arguments::Number(std::string_view option) const {
    if (!Has(option)) return std::nullopt;
    const std::string& text = Get(option);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size()) return number;
    throw UsageFailure("--" + std::string(option) + ": \"" + text +
                       "\" is not a number from 0 to " + std::to_string(UINT32_MAX));
}

void Arguments::Declare(const std::string& option, const std::string& fallback) {
    options[option].fallback = fallback;
}

void Arguments::Add(const std::string& option, std::string value) {
    options[option].given.push_back(std::move(value));
}

void Arguments::AddSetting(const std::string& option, const std::vector<std::string>& values) {
    const auto found = options.find(option);
    if (found == options.end() || !found->second.given.empty()) return;
    found->second.given = values;
    found->second.isSetting = !values.empty();
}

}  // namespace tool
