#include "wordlex/functionality/ImageWriter.h"

namespace lexon_private {

void ImageWriter::WriteSize(std::uint64_t byteCount) {
    const auto size = static_cast<std::uint32_t>(byteCount);
    if (size != byteCount) out.setstate(std::ios_base::failbit);
    write4(size);
}

void ImageWriter::writearr2(const unsigned short* units, std::size_t byteCount) {
    const std::size_t count = byteCount / sizeof *units;
    if (!swap) {
        WriteBytes(units, count * sizeof *units);
    } else {
        WriteSwapped(units, count,
                     [this](const void* bytes, std::size_t size) { WriteBytes(bytes, size); });
    }
}

}  // namespace lexon_private
