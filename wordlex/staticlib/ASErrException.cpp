#include <cctype>
#include <cstdio>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon {

ASErrException::ASErrException(std::int64_t errorCode) noexcept : code(errorCode), message{} {
    char letters[5] = {};
    for (int i = 0; i < 4; ++i) {
        letters[i] = static_cast<char>(static_cast<std::uint64_t>(code) >> (24 - 8 * i) & 0xFF);
        if (std::isprint(static_cast<unsigned char>(letters[i])) == 0) letters[0] = '\0';
    }
    const bool fourLetters = letters[0] != '\0' && code >> 32 == 0;
    if (fourLetters) {
        std::snprintf(message, sizeof message, "Wordlex error '%s'", letters);
    } else {
        std::snprintf(message, sizeof message, "Wordlex error %lld", static_cast<long long>(code));
    }
}

const char* ASErrException::what() const noexcept { return message; }

}  // namespace lexon
