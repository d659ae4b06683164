#pragma once

#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace host::cf {

// The value of the first of these environment variables that is set and not empty. Empty when there
// is none. Borrowed from the environment.
inline std::string_view FirstSetVariable(std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

}  // namespace host::cf
