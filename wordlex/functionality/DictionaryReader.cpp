#include "wordlex/functionality/DictionaryReader.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <utility>

#include "wordlex/functionality/ByteSwapUnicodeReader.h"
#include "wordlex/functionality/MultibyteReader.h"

namespace lexon_private {

namespace {

constexpr std::size_t kFirstLineCapacity = 256;

enum class TextKind { kHostOrder, kOtherOrder, kEightBit };

constexpr long kMarkSize = 2;

// Reads up to `size` bytes and counts them in `got`, which is right even when the stream throws.
// Reads no more at a time than the stream promises: a longer read with a fault would lose the bytes
// before the fault. A file promises all its remaining bytes.
void Take(std::istream& stream, char* buffer, long size, long& got) {
    while (got < size) {
        const std::streamsize ready = stream.readsome(buffer + got, size - got);
        if (ready == 0 && !stream.get(buffer[got])) break;
        got += std::max<long>(ready, 1);
    }
}

TextKind KindOf(const char* firstBytes) {
    unsigned short unit = 0;
    std::memcpy(&unit, firstBytes, kMarkSize);
    return unit == 0xFEFF   ? TextKind::kHostOrder
           : unit == 0xFFFE ? TextKind::kOtherOrder
                            : TextKind::kEightBit;
}

}  // namespace

DictionaryReader::DictionaryReader(std::istream* source)
    : line(kFirstLineCapacity), stream(source), sourceKind(SourceKind::kStream) {}

DictionaryReader::DictionaryReader(const char* begin, const char* end)
    : line(kFirstLineCapacity),
      sourceKind(SourceKind::kMemory),
      imageCursor(begin),
      imageEnd(end) {}

std::unique_ptr<DictionaryReader> DictionaryReader::Make(std::istream* stream) {
    char mark[kMarkSize];
    long count = kMarkSize;
    ReadDataStream(stream, mark, &count);
    const TextKind kind = count == kMarkSize ? KindOf(mark) : TextKind::kEightBit;
    if (kind == TextKind::kHostOrder) return std::make_unique<UnicodeReader>(stream);
    if (kind == TextKind::kOtherOrder) return std::make_unique<ByteSwapUnicodeReader>(stream);
    if (stream != nullptr) {
        stream->clear();
        stream->seekg(0);
    }
    return std::make_unique<MultibyteReader>(stream);
}

std::unique_ptr<DictionaryReader> DictionaryReader::Make(const char* begin, const char* end) {
    if (end - begin < kMarkSize) return nullptr;
    switch (KindOf(begin)) {
        case TextKind::kHostOrder:
            return std::make_unique<UnicodeReader>(begin + kMarkSize, end);
        case TextKind::kOtherOrder:
            return std::make_unique<ByteSwapUnicodeReader>(begin + kMarkSize, end);
        default:
            return std::make_unique<MultibyteReader>(begin, end);
    }
}

void DictionaryReader::ReadDataStream(std::istream* stream, char* buffer, long* count) {
    const long size = std::exchange(*count, 0);
    if (stream != nullptr) Take(*stream, buffer, size, *count);
}

void DictionaryReader::ReadDataStream(char* buffer, long* count) {
    if (sourceKind == SourceKind::kMemory) {
        ReadDataBuffer(buffer, count);
        return;
    }
    const long size = std::exchange(*count, 0);
    if (thrown != nullptr) std::rethrow_exception(std::exchange(thrown, nullptr));
    if (stream == nullptr) return;
    try {
        Take(*stream, buffer, size, *count);
    } catch (...) {
        if (*count == 0) throw;
        thrown = std::current_exception();
    }
}

void DictionaryReader::ReadDataBuffer(char* buffer, long* count) {
    *count = std::min<long>(*count, imageEnd - imageCursor);
    std::copy_n(imageCursor, *count, buffer);
    imageCursor += *count;
}

}  // namespace lexon_private
