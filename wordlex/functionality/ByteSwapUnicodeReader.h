#pragma once
#include "wordlex/functionality/UnicodeReader.h"

namespace lexon_private {

// Lines of UTF-16 text in the byte order that is not the host's.
class ByteSwapUnicodeReader : public UnicodeReader {
public:
    using UnicodeReader::UnicodeReader;

    std::size_t ReadCharacters(unsigned short* units, std::size_t count) override;
};

}  // namespace lexon_private
