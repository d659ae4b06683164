#pragma once
#include <cstdint>
#include <string>

namespace tool {

// How a control character is shown.
enum class ControlForm : std::uint8_t {
    kEntry,  // "#{U+001B}", as in a dictionary
    kJson,   // "\u001B"
};

// UTF-8 for WriteOutput() to `path`. A terminal would obey control characters, so they are escaped
// when the output is one. Line ends and tabs stay.
std::string ForOutput(const std::string& path, std::string text, ControlForm form);

}  // namespace tool
