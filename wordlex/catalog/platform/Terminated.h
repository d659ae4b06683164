#pragma once
#include <cstring>
#include <string_view>

namespace lexon::detail {

// The part of a zero-terminated text before `stop`, else all of it, in one scan.
inline std::string_view Before(const char* text, char stop) noexcept {
    return {text, static_cast<std::size_t>(::strchrnul(text, stop) - text)};
}

}  // namespace lexon::detail
