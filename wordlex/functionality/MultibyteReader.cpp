#include "wordlex/functionality/MultibyteReader.h"

#include "wordlex/functionality/FindUnit.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

unsigned short* MultibyteReader::ReadALine() {
    lineLength = 0;
    if (!CollectLine()) return nullptr;
    UnicodeUtil::StringToUnicode(bytes.GetData(), bytes.GetLength(), line, nullptr);
    unsigned short* const units = EndLine();
    lineLength = UnicodeUtil::StringLength(units);  // conversions may give a 0 of their own
    return units;
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
        const unsigned char* const stop = FindUnit(begin, end, 0, 0x0A, 0x0D);
        bytes.Append(begin, static_cast<std::size_t>(stop - begin));
        blockCursor = static_cast<std::size_t>(stop - block.data());
        offset += static_cast<std::size_t>(stop - begin);
        if (stop == end) continue;
        ++blockCursor;
        ++offset;
        if (*stop != 0) return true;
        ended = true;
    }
    return bytes.GetLength() != 0;
}

}  // namespace lexon_private
