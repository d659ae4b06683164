#include "app/trace/Printable.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <sstream>

namespace trace {
namespace {

bool IsVisible(UChar32 character) {
    constexpr std::uint32_t kHidden = U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;
    return character >= 0 && (U_GET_GC_MASK(character) & kHidden) == 0;
}

}  // namespace

std::string Printable(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::ostringstream line;
    for (std::size_t end = 0; end < text.size();) {
        const std::size_t begin = end;
        UChar32 character = 0;
        U8_NEXT(bytes, end, text.size(), character);
        if (character == '\\') {
            line << "\\\\";
        } else if (IsVisible(character)) {
            line << text.substr(begin, end - begin);
        } else {
            for (std::size_t i = begin; i < end; ++i)
                line << "\\x" << std::hex << std::uppercase << std::setw(2) << std::setfill('0')
                     << int{bytes[i]};
        }
    }
    return line.str();
}

}  // namespace trace
