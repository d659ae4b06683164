#pragma once
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/base/Text.h"
#include "wordlex/functionality/DictionaryReader.h"

namespace tool {

// Whether a unit ends a line for the loader.
bool IsLineEnd(unsigned unit, bool utf16);

// Reads a text dictionary with the library's own reader, as Dictionary::Read does, and knows the
// place of each line.
// Lines:   as an editor counts them: CR LF ends one line. In UTF-16 the loader splits at U+2028 and
//          U+2029 too, so they count there.
// Columns: characters from 1; a byte-order mark is not counted.
class TextScanner {
public:
    // `bytes` outlive the scanner.
    explicit TextScanner(const std::string& bytes);

    // The next line that is not empty for the loader, or that it lost. False at the end of the
    // input.
    bool Next();

    // The line's units, terminated by 0, including its own mark. Empty when the line was lost.
    Units Line() const { return {line, reader->GetLineLength()}; }
    unsigned short* LineData() const { return line; }
    // The bytes of the line without its line end, in the scanner's input.
    std::string_view LineBytes() const { return lineBytes; }
    // An 8-bit line of invalid bytes, which the loader takes for an empty one.
    bool IsLost() const { return Line().empty(); }
    std::uint64_t LostColumn() const { return lastColumn; }  // where they begin
    std::uint64_t LineNumber() const { return number; }
    std::uint64_t Column(const unsigned short* position) const;
    std::uint64_t Offset() const { return reader->GetOffset(); }

    bool IsUtf16() const { return unitSize == 2; }
    bool IsBigEndian() const { return bigEndian; }

    // Units of the longest line of the whole input; a zero ends none.
    std::size_t LongestLine() const;

    // At the end of the input: whether a zero ended it, with its line and column, and the bytes
    // that the loader did not read.
    struct End {
        bool byZero;
        std::uint64_t line;
        std::uint64_t column;
        std::uint64_t bytesLeft;
    };
    End AtEnd() const;

private:
    unsigned UnitBefore(std::uint64_t offset) const;
    void Count(std::uint64_t from);

    const std::string& source;
    std::istringstream stream;
    std::unique_ptr<lexon_private::DictionaryReader> reader;
    std::size_t unitSize = 1;
    bool bigEndian = false;
    unsigned short* line = nullptr;
    std::string_view lineBytes;  // without the line end
    std::uint64_t number = 0;
    std::uint64_t lastColumn = 1;  // after the line, or after the text of a lost one
    // How far the line was counted for the last column: most calls ask in ascending order.
    struct Counted {
        std::size_t units = 0;
        std::uint64_t characters = 0;
    };
    mutable Counted counted;
    unsigned ending = '\n';  // the end of the previous line
};

}  // namespace tool
