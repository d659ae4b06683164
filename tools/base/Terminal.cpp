#include "tools/base/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace tool {

namespace {

bool IsTerminal(const std::string& path) {
    if (path == "-") return isatty(STDOUT_FILENO) != 0;
    const int file = open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return false;
    const bool terminal = isatty(file) != 0;
    close(file);
    return terminal;
}

std::string Escape(unsigned control, ControlForm form) {
    char escape[16];
    std::snprintf(escape, sizeof escape, form == ControlForm::kJson ? "\\u%04X" : "#{U+%04X}",
                  control);
    return escape;
}

}  // namespace

std::string ForOutput(const std::string& path, std::string text, ControlForm form) {
    if (!IsTerminal(path)) return text;
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F) {
            shown += Escape(byte, form);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {  // U+0080 to U+009F
            shown += Escape(next, form);
            ++i;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

}  // namespace tool
