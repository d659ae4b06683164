#pragma once
#include <array>

#include "wordlex/functionality/DictionaryReader.h"

namespace lexon_private {

// Lines of UTF-16 text in host byte order, ended by LF, CR, U+2028 or U+2029.
// An odd last byte of the input forms no unit and is dropped.
class UnicodeReader : public DictionaryReader {
public:
    using DictionaryReader::DictionaryReader;

    unsigned short* ReadALine() override;
    // Reads up to `count` units, in host order; gives how many, fewer only at the input's end.
    virtual std::size_t ReadCharacters(unsigned short* units, std::size_t count);

private:
    // Each read costs a call of the system: few of them, and no more memory than is touched.
    static constexpr std::size_t kBlockUnits = 0x8000;

    std::array<unsigned short, kBlockUnits> block;  // read ahead
    std::size_t blockCursor = 0;
    std::size_t blockLength = 0;
};

}  // namespace lexon_private
