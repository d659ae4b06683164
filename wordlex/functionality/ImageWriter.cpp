#include "wordlex/functionality/ImageWriter.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace lexon_private {

void ImageWriter::WriteBytes(const void* bytes, std::size_t byteCount) {
    out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(byteCount));
    written += static_cast<std::uint32_t>(byteCount);
}

void ImageWriter::WriteSize(std::uint64_t byteCount) {
    const auto size = static_cast<std::uint32_t>(byteCount);
    if (size != byteCount) out.setstate(std::ios_base::failbit);
    write4(size);
}

void ImageWriter::writearr2(const unsigned short* units, std::size_t byteCount) {
    std::size_t left = byteCount / sizeof *units;
    if (!swap) {
        WriteBytes(units, left * sizeof *units);
        return;
    }
    std::array<unsigned short, 256> swapped;
    while (left != 0) {
        const std::size_t step = std::min(left, swapped.size());
        std::transform(units, units + step, swapped.begin(), ByteSwap<unsigned short>);
        WriteBytes(swapped.data(), step * sizeof *units);
        units += step;
        left -= step;
    }
}

}  // namespace lexon_private
