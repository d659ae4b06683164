#pragma once
#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <span>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/Table.h"

namespace lexon_private {

// Why a binary dictionary is refused.
enum class ImageFault : std::uint8_t {
    kNone,
    kCutShort,            // a field or table runs past the end
    kUnknownVersion,      // of the header
    kIdBaseConflict,      // the image continues another store
    kTooManyEntries,      // for ids of 32 bits
    kKeyOutside,          // offset and length leave the key area
    kValueOutside,        // the same for the value area
    kAcceleratorOutside,  // the same for the accelerator area
    kTooMuchSharing,      // strings share so many bytes that they would cost far more than the file
    kSlotOutside,         // a hash slot above 1020
    kIdOutside,           // an entry id after the entry tables
    kTableDecreases,      // a cumulative table of version 1 goes down, or splits an entry
};
// Whether a version 2 body with that fault makes the dictionary invalid. With any other fault the
// body is ignored.
constexpr bool IsMalformed(ImageFault fault) noexcept {
    return fault == ImageFault::kSlotOutside || fault == ImageFault::kIdOutside;
}
// In English, to follow "refused: ".
const char* Describe(ImageFault fault) noexcept;

// Bytes of an image: in the image itself if it is in memory, otherwise a copy.
class ImageBytes {
public:
    ImageBytes() noexcept = default;
    explicit ImageBytes(std::span<const unsigned char> inImage) noexcept : bytes(inImage) {}
    explicit ImageBytes(Table<unsigned char> read) noexcept
        : owned(std::move(read)), bytes(owned.data(), owned.size()) {}

    const unsigned char* data() const noexcept { return bytes.data(); }
    std::size_t size() const noexcept { return bytes.size(); }

private:
    Table<unsigned char> owned;
    std::span<const unsigned char> bytes;
};

// Forward reader over a binary dictionary in memory or on a stream. Only this code checks sizes
// against the input and swaps bytes while reading.
// Owns:    nothing; the image or the stream outlives the reader.
// Failure: sticks. The first fault and its offset stay; later reads return 0 or nothing, so a
//          parser calls Ok() once per section. Nothing is allocated for bytes that the image only
//          claims to have: for memory, and for a stream that can seek, the rest is known; other
//          streams are read in steps. A bad stream counts as one that ends. std::bad_alloc and
//          exceptions of the stream pass through.
// Units:   offsets and sizes are bytes from where the reader began.
class ImageReader {
public:
    ImageReader(const char* begin, const char* end, lexon::EndianT order) noexcept;
    // From the stream's position; leaves it right after the last byte read.
    ImageReader(std::istream& source, lexon::EndianT order);
    ImageReader(const ImageReader&) = delete;
    ImageReader& operator=(const ImageReader&) = delete;

    void SetOrder(lexon::EndianT order) noexcept { swap = setEndian(order); }

    bool Ok() const noexcept { return fault == ImageFault::kNone; }
    ImageFault Fault() const noexcept { return fault; }
    std::uint64_t FaultOffset() const noexcept { return faultOffset; }
    // For faults that a parser finds in the values.
    void Reject(ImageFault why, std::uint64_t where) noexcept;

    std::uint64_t Offset() const noexcept { return offset; }
    bool InMemory() const noexcept { return stream == nullptr; }
    bool AtEnd();

    template <std::unsigned_integral T>
    T Get() {
        T value = 0;
        if (!Take(&value, sizeof value)) return 0;
        return swap ? ByteSwap(value) : value;
    }
    // `count` items, in host byte order.
    template <std::unsigned_integral T>
    Table<T> GetTable(std::uint64_t count) {
        if (count > kMostBytes / sizeof(T)) {
            Reject(ImageFault::kCutShort, offset);
            return {};
        }
        return GetArea<T>(count * sizeof(T));
    }
    // `byteCount` bytes as items, in host byte order. Bytes that do not fill an item stay in file
    // order at the start of a last item, which is filled up with zeros.
    template <std::unsigned_integral T>
    Table<T> GetArea(std::uint64_t byteCount);
    ImageBytes GetBytes(std::uint64_t byteCount);

private:
    static constexpr std::uint64_t kMostBytes = std::numeric_limits<std::ptrdiff_t>::max();
    static constexpr std::uint64_t kBlindStep = 0x10000;  // first step when the end is unknown

    // Whether the bytes are there, as far as known; rejects the image if not.
    bool Expect(std::uint64_t byteCount) noexcept;
    // Copies the next bytes; false and rejected when they are not there.
    bool Take(void* destination, std::uint64_t byteCount);

    const unsigned char* cursor = nullptr;  // in memory: the next byte
    std::istream* stream = nullptr;
    std::uint64_t left = kMostBytes;  // remaining bytes; unlimited on a stream that does not know
    bool endKnown = true;
    bool swap;
    ImageFault fault = ImageFault::kNone;
    std::uint64_t faultOffset = 0;
    std::uint64_t offset = 0;
};

template <std::unsigned_integral T>
Table<T> ImageReader::GetArea(std::uint64_t byteCount) {
    if (!Expect(byteCount)) return {};
    const std::uint64_t itemCount = byteCount / sizeof(T) + (byteCount % sizeof(T) != 0 ? 1 : 0);
    const std::uint64_t firstStep = endKnown ? itemCount : kBlindStep / sizeof(T);
    Table<T> items;
    for (std::uint64_t filled = 0; items.size() < itemCount;) {
        const std::uint64_t room = items.empty() ? firstStep : 2 * items.size();
        Table<T> larger(static_cast<std::size_t>(std::min(room, itemCount)));
        if (filled != 0) std::memcpy(larger.data(), items.data(), filled);
        items = std::move(larger);
        items[items.size() - 1] = 0;
        const std::uint64_t step =
            std::min<std::uint64_t>(byteCount, items.size() * sizeof(T)) - filled;
        if (!Take(reinterpret_cast<unsigned char*>(items.data()) + filled, step)) return {};
        filled += step;
    }
    if (swap) {
        const auto wholeItems = static_cast<std::ptrdiff_t>(byteCount / sizeof(T));
        std::transform(items.begin(), items.begin() + wholeItems, items.begin(), ByteSwap<T>);
    }
    return items;
}

}  // namespace lexon_private
