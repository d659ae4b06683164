#include "tools/base/TextScanner.h"

#include <algorithm>

#include "wordlex/functionality/ByteSwapUnicodeReader.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace tool {

namespace {

constexpr unsigned short kMark = 0xFEFF;

// The number of characters before the first invalid byte.
std::uint64_t ValidCharacters(std::string_view bytes) {
    constexpr std::size_t kLongestCharacter = 4;
    lexon_private::Buffer<unsigned short> units(kLongestCharacter);
    const auto isCharacter = [&](std::string_view piece) {
        lexon_private::UnicodeUtil::StringToUnicode(
            reinterpret_cast<const unsigned char*>(piece.data()), piece.size(), units, nullptr);
        return units.GetLength() != 0;
    };
    for (std::uint64_t count = 0;; ++count) {
        std::size_t length = 1;
        while (length <= kLongestCharacter && !isCharacter(bytes.substr(0, length)))
            ++length;
        if (length > kLongestCharacter || length > bytes.size()) return count;
        bytes.remove_prefix(length);
    }
}

}  // namespace

bool IsLineEnd(unsigned unit, bool utf16) {
    return unit == '\n' || unit == '\r' || (utf16 && (unit == 0x2028 || unit == 0x2029));
}

TextScanner::TextScanner(const std::string& bytes)
    : source(bytes), stream(bytes), reader(lexon_private::DictionaryReader::Make(&stream)) {
    if (dynamic_cast<const lexon_private::UnicodeReader*>(reader.get()) != nullptr) unitSize = 2;
    bigEndian = unitSize == 2 && static_cast<unsigned char>(source[0]) == 0xFE;
    // The dictionary reads a stream from its start again, including the mark of UTF-16.
    stream.clear();
    stream.seekg(0);
}

bool TextScanner::Next() {
    for (;;) {
        const std::uint64_t from = reader->GetOffset();
        line = reader->ReadALine();
        if (line == nullptr) return false;
        counted = {};
        Count(from);
        const Units units = Line();
        lastColumn = IsLost() ? 1 + ValidCharacters(lineBytes) : Column(line + units.size());
        const bool markAlone = units.size() == 1 && units[0] == kMark;
        if (!units.empty() ? !markAlone : !lineBytes.empty()) return true;
    }
}

// Records the line that begins at `from`, which the reader has just read.
void TextScanner::Count(std::uint64_t from) {
    const std::uint64_t to = reader->GetOffset();
    const unsigned last = UnitBefore(to);
    const bool ended = to != from && (last == 0 || IsLineEnd(last, IsUtf16()));
    const bool restOfPair = ending == '\r' && last == '\n' && to - from == unitSize;
    lineBytes = std::string_view(source).substr(from, to - from - (ended ? unitSize : 0));
    ending = last;
    if (!restOfPair) ++number;
}

// The unit that ends at `offset`.
unsigned TextScanner::UnitBefore(std::uint64_t offset) const {
    if (offset < unitSize) return '\n';
    const auto byteAt = [&](std::uint64_t at) { return static_cast<unsigned char>(source[at]); };
    if (unitSize == 1) return byteAt(offset - 1);
    const unsigned first = byteAt(offset - 2);
    const unsigned second = byteAt(offset - 1);
    return bigEndian ? first << 8 | second : second << 8 | first;
}

std::size_t TextScanner::LongestLine() const {
    std::size_t longest = 0;
    std::size_t length = 0;
    for (std::uint64_t end = unitSize; end <= source.size(); end += unitSize) {
        length = IsLineEnd(UnitBefore(end), IsUtf16()) ? 0 : length + 1;
        longest = std::max(longest, length);
    }
    return longest;
}

std::uint64_t TextScanner::Column(const unsigned short* position) const {
    const Units units = Line();
    const auto end = static_cast<std::size_t>(position - line);
    if (end < counted.units) counted = {};
    for (; counted.units < end; ++counted.units) {
        const bool isMark = number == 1 && counted.units == 0 && *line == kMark;
        if (!isMark && !IsSecondHalf(units, counted.units)) ++counted.characters;
    }
    return 1 + counted.characters;
}

TextScanner::End TextScanner::AtEnd() const {
    const std::uint64_t offset = reader->GetOffset();
    const bool byZero = UnitBefore(offset) == 0;
    const bool newLine = IsLineEnd(ending, IsUtf16());
    return {byZero, newLine ? number + 1 : number, newLine ? 1 : lastColumn,
            source.size() - offset};
}

}  // namespace tool
