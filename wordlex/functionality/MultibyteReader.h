#pragma once
#include "wordlex/functionality/DictionaryReader.h"
#include "wordlex/functionality/LineSplitter.h"

namespace lexon_private {

// Lines of 8-bit text in the library's default encoding, ended by LF or CR.
// Failure: a conversion error leaves ReadALine as an ASErrException. Bytes that are not valid text
//          make their line empty.
class MultibyteReader : public DictionaryReader {
public:
    using DictionaryReader::DictionaryReader;

    unsigned short* ReadALine() override;

private:
    static constexpr std::size_t kFirstLineBytes = 256;
    Buffer<unsigned char> bytes{kFirstLineBytes};  // a line that crosses blocks
    LineSplitter<unsigned char> lines;
};

}  // namespace lexon_private
