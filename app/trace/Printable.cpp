#include "app/trace/Printable.h"

#include <iomanip>
#include <sstream>

#include "host/vexacore/Utility.h"

namespace trace {

std::string Printable(const std::string& text) {
    namespace utility = vexacore::utility;
    const bool isUtf8 = utility::UTF16toStdString(utility::StdToUTF16String(text)) == text;
    std::ostringstream line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte == 0x7F || (!isUtf8 && byte > 0x7F))
            line << "\\x" << std::hex << std::uppercase << std::setw(2) << std::setfill('0')
                 << int{byte};
        else
            line << c;
    }
    return line.str();
}

}  // namespace trace
