#pragma once

#include <cstdlib>
#include <sstream>
#include <string>

// Sets the environment variables that the host reads to `assignments` ("NAME=value ..."). Removes
// all others of them.
inline void SetEnvironment(const std::string& assignments) {
    for (const char* const name :
         {"LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LANG", "XDG_DATA_DIRS"})
        unsetenv(name);
    std::istringstream words(assignments);
    for (std::string word; words >> word;) {
        const auto equals = word.find('=');
        setenv(word.substr(0, equals).c_str(), word.substr(equals + 1).c_str(), 1);
    }
}
