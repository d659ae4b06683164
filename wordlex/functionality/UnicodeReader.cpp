#include "wordlex/functionality/UnicodeReader.h"

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

unsigned short* UnicodeReader::ReadALine() {
    line.SetLength(0);
    while (!ended) {
        if (blockCursor == blockLength) {
            blockCursor = 0;
            blockLength = ReadCharacters(block.data(), block.size());
            if (blockLength == 0) break;
        }
        const unsigned short* const begin = block.data() + blockCursor;
        const unsigned short* const end = block.data() + blockLength;
        const unsigned short* const stop = FindUnit(begin, end, 0, 0x000A, 0x000D, 0x2028, 0x2029);
        line.Append(begin, static_cast<std::size_t>(stop - begin));
        blockCursor = static_cast<std::size_t>(stop - block.data());
        offset += static_cast<std::size_t>(stop - begin) * sizeof *stop;
        if (stop == end) continue;
        ++blockCursor;
        offset += sizeof *stop;
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
