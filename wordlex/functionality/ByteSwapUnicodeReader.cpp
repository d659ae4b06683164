#include "wordlex/functionality/ByteSwapUnicodeReader.h"

#include <algorithm>

#include "wordlex/functionality/UnicodeChar.h"

namespace lexon_private {

std::size_t ByteSwapUnicodeReader::ReadCharacters(unsigned short* units, std::size_t count) {
    const std::size_t got = UnicodeReader::ReadCharacters(units, count);
    std::transform(units, units + got, units, UnicodeChar::ByteSwap);
    return got;
}

}  // namespace lexon_private
