#include "wordlex/functionality/UnicodeReader.h"

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

unsigned short* UnicodeReader::ReadALine() {
    line.SetLength(0);
    lineLength = 0;
    while (!ended) {
        if (blockCursor == blockLength) {
            blockCursor = 0;
            blockLength = ReadCharacters(block.data(), block.size());
            if (blockLength == 0) break;
        }
        unsigned short* const begin = block.data() + blockCursor;
        const unsigned short* const end = block.data() + blockLength;
        const std::ptrdiff_t length =
            FindUnit<unsigned short>(begin, end, 0, 0x000A, 0x000D, 0x2028, 0x2029) - begin;
        unsigned short* const stop = begin + length;
        const bool atEnd = stop == end;
        blockCursor += static_cast<std::size_t>(length + (atEnd ? 0 : 1));
        offset += static_cast<std::size_t>(length + (atEnd ? 0 : 1)) * sizeof *stop;
        if (!atEnd && *stop != 0 && line.GetLength() == 0) {  // all of it lies in the block
            *stop = 0;
            lineLength = static_cast<std::size_t>(length);
            return begin;
        }
        line.Append(begin, static_cast<std::size_t>(length));
        if (atEnd) continue;
        if (*stop != 0) return EndLine();
        ended = true;
    }
    return line.GetLength() == 0 ? nullptr : EndLine();
}

std::size_t UnicodeReader::ReadCharacters(unsigned short* units, std::size_t count) {
    long bytes = static_cast<long>(count * sizeof *units);
    ReadDataStream(reinterpret_cast<char*>(units), &bytes);
    return static_cast<std::size_t>(bytes) / sizeof *units;
}

}  // namespace lexon_private
