#pragma once
#include <array>

#include "wordlex/functionality/DictionaryReader.h"

namespace lexon_private {

// Lines of 8-bit text in the library's default encoding, ended by LF or CR.
// Failure: a conversion error leaves ReadALine as an ASErrException; bytes that are not valid text
//          make their line empty.
class MultibyteReader : public DictionaryReader {
public:
    using DictionaryReader::DictionaryReader;

    unsigned short* ReadALine() override;

private:
    static constexpr std::size_t kFirstLineBytes = 256;
    static constexpr std::size_t kBlockBytes = 0x10000;

    bool CollectLine();

    Buffer<unsigned char> bytes{kFirstLineBytes};  // the line before its conversion
    std::array<unsigned char, kBlockBytes> block;  // read ahead
    std::size_t blockCursor = 0;
    std::size_t blockLength = 0;
};

}  // namespace lexon_private
