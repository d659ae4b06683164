#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

// Sets the environment variables that the host reads to these values and all others of them to
// none; puts everything back at its end.
class ScopedVariables {
public:
    using Values = std::map<std::string, std::string>;

    explicit ScopedVariables(const Values& values) {
        for (const char* const name :
             {"LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LANG", "XDG_DATA_DIRS"}) {
            const char* const old = std::getenv(name);
            saved[name] = old == nullptr ? std::nullopt : std::optional<std::string>(old);
            unsetenv(name);
        }
        for (const auto& [name, value] : values)
            setenv(name.c_str(), value.c_str(), 1);
    }
    ~ScopedVariables() {
        for (const auto& [name, value] : saved) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }
    ScopedVariables(const ScopedVariables&) = delete;
    ScopedVariables& operator=(const ScopedVariables&) = delete;

private:
    std::map<std::string, std::optional<std::string>> saved;
};
