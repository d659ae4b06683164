#include "wordlex/functionality/MultibyteReader.h"

#include <algorithm>

#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

namespace {

bool EndsRun(unsigned char byte) { return byte == 0 || byte == 0x0A || byte == 0x0D; }

}  // namespace

unsigned short* MultibyteReader::ReadALine() {
    if (!CollectLine()) return nullptr;
    UnicodeUtil::StringToUnicode(bytes.GetData(), bytes.GetLength(), line, nullptr);
    return EndLine();
}

// False when the input ended before the line had a byte or an end.
bool MultibyteReader::CollectLine() {
    bytes.SetLength(0);
    while (!ended) {
        if (blockCursor == blockLength) {
            long count = static_cast<long>(block.size());
            ReadDataStream(reinterpret_cast<char*>(block.data()), &count);
            blockCursor = 0;
            blockLength = static_cast<std::size_t>(count);
            if (count == 0) break;
        }
        const unsigned char* const begin = block.data() + blockCursor;
        const unsigned char* const end = block.data() + blockLength;
        const unsigned char* const stop = std::find_if(begin, end, EndsRun);
        bytes.Append(begin, static_cast<std::size_t>(stop - begin));
        blockCursor = static_cast<std::size_t>(stop - block.data());
        if (stop == end) continue;
        ++blockCursor;
        if (*stop != 0) return true;
        ended = true;
    }
    return bytes.GetLength() != 0;
}

}  // namespace lexon_private
