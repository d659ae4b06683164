#pragma once
#include <cstdint>
#include <string>

namespace tool {

// What stands for a control character.
enum class ControlForm : std::uint8_t {
    kEntry,  // "#{U+001B}", as in a dictionary
    kJson,   // "\u001B"
};

// UTF-8 that WriteOutput() is to write to `path`. A terminal would obey control characters, so
// where the output is one they are escaped; line ends and tabs stay.
std::string ForOutput(const std::string& path, std::string text, ControlForm form);

}  // namespace tool
