#pragma once
#include <cstdint>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/BlockStream.h"

namespace lexon_private {

// Writes the fields of a binary dictionary front to back in a given byte order.
// Failure: reported by the stream's state.
class ImageWriter {
public:
    ImageWriter(BlockStream& destination, lexon::EndianT order) noexcept
        : out(destination), swap(setEndian(order)) {}

    void WriteByte(std::uint8_t value) { WriteBytes(&value, sizeof value); }
    void WriteBytes(const void* bytes, std::size_t byteCount) {
        out.Append(bytes, byteCount);
        written += static_cast<std::uint32_t>(byteCount);
    }
    void write2(std::uint16_t value) {
        if (swap) value = ByteSwap(value);
        WriteBytes(&value, sizeof value);
    }
    void write4(std::uint32_t value) {
        if (swap) value = ByteSwap(value);
        WriteBytes(&value, sizeof value);
    }
    // The size of an area. One that needs more than 32 bits makes the stream fail.
    void WriteSize(std::uint64_t byteCount);
    // The whole units in `byteCount` bytes.
    void writearr2(const unsigned short* units, std::size_t byteCount);

    std::uint32_t Written() const noexcept { return written; }  // bytes

private:
    BlockStream& out;
    bool swap;
    std::uint32_t written = 0;
};

}  // namespace lexon_private
