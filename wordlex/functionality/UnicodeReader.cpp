#include "wordlex/functionality/UnicodeReader.h"

namespace lexon_private {

unsigned short* UnicodeReader::ReadALine() {
    const auto found = lines.Next(
        line,
        [this](unsigned short* units, std::size_t count) { return ReadCharacters(units, count); },
        0x000A, 0x000D, 0x2028, 0x2029);
    offset = lines.Taken() * sizeof(unsigned short);
    lineLength = found.has_value() ? found->size() : 0;
    if (!found.has_value()) return nullptr;
    found->data()[lineLength] = 0;
    return found->data();
}

std::size_t UnicodeReader::ReadCharacters(unsigned short* units, std::size_t count) {
    long bytes = static_cast<long>(count * sizeof *units);
    ReadDataStream(reinterpret_cast<char*>(units), &bytes);
    return static_cast<std::size_t>(bytes) / sizeof *units;
}

}  // namespace lexon_private
