#include "wordlex/functionality/MultibyteReader.h"

#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

unsigned short* MultibyteReader::ReadALine() {
    const auto read = [this](unsigned char* block, std::size_t size) {
        long count = static_cast<long>(size);
        ReadDataStream(reinterpret_cast<char*>(block), &count);
        return static_cast<std::size_t>(count);
    };
    const auto found = lines.Next(bytes, read, 0x0A, 0x0D);
    offset = lines.Taken();
    lineLength = 0;
    if (!found.has_value()) return nullptr;
    line.SetLength(0);
    // Empty lines need no conversion; every CR LF makes one.
    if (!found->empty()) UnicodeUtil::StringToUnicode(found->data(), found->size(), line, nullptr);
    line.Append(0);
    // A conversion may result in a 0.
    lineLength = UnicodeUtil::StringLength(line.GetData());
    return line.GetData();
}

}  // namespace lexon_private
