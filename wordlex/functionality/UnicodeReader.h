#pragma once
#include "wordlex/functionality/DictionaryReader.h"
#include "wordlex/functionality/LineSplitter.h"

namespace lexon_private {

// Lines of UTF-16 text in host byte order, ended by LF, CR, U+2028 or U+2029.
// An odd last byte of the input is not a unit and is dropped.
class UnicodeReader : public DictionaryReader {
public:
    using DictionaryReader::DictionaryReader;

    unsigned short* ReadALine() override;
    // Reads up to `count` units, in host order. Returns their number, fewer only at the input's
    // end.
    virtual std::size_t ReadCharacters(unsigned short* units, std::size_t count);

private:
    LineSplitter<unsigned short> lines;
};

}  // namespace lexon_private
