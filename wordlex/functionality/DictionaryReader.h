#pragma once
#include <cstdint>
#include <exception>
#include <iosfwd>
#include <memory>

#include "wordlex/functionality/Buffer.h"

namespace lexon_private {

// Reads a text dictionary line by line: UTF-16 in either byte order, or 8-bit text.
// Owns:    its line buffer. Stream and image are borrowed and outlive the reader.
// Failure: a source that cannot be read ends the text; there is no error state of its own. An
//          exception of the stream leaves ReadALine after the last line that is complete before the
//          fault.
// Input is read ahead in blocks, but only from the first line on.
class DictionaryReader {
public:
    // Chooses by the first two bytes. FF FE and FE FF are the marks of UTF-16 and are skipped.
    // Anything else is 8-bit text: the stream's state is cleared and it moves back to its start.
    // For a null stream, returns a reader without lines.
    static std::unique_ptr<DictionaryReader> Make(std::istream* stream);
    // The same over an image; null when it has fewer than two bytes.
    static std::unique_ptr<DictionaryReader> Make(const char* begin, const char* end);
    // Reads up to `*count` bytes and sets `*count` to those read; none from a null stream.
    static void ReadDataStream(std::istream* stream, char* buffer, long* count);

    explicit DictionaryReader(std::istream* source);
    DictionaryReader(const char* begin, const char* end);
    DictionaryReader(const DictionaryReader&) = delete;
    DictionaryReader& operator=(const DictionaryReader&) = delete;
    virtual ~DictionaryReader() = default;

    // The units of the next line, without its end, and a 0 after them; null at the end of the
    // input. The caller may change them; they are valid until the next call. A unit or byte 0 ends
    // the input for good.
    virtual unsigned short* ReadALine() = 0;
    // The number of units in ReadALine's last result, without the 0; 0 when that was null.
    std::size_t GetLineLength() const noexcept { return lineLength; }
    // The number of bytes used so far, from where reading began: through the end of the latest
    // line, or through the 0 that ended the input.
    std::uint64_t GetOffset() const noexcept { return offset; }

protected:
    // Reads up to `*count` bytes and sets `*count` to the number read. If the stream throws after
    // some bytes, returns these first and throws at the next call.
    void ReadDataStream(char* buffer, long* count);

    Buffer<unsigned short> line;
    std::size_t lineLength = 0;
    std::uint64_t offset = 0;

private:
    enum class SourceKind : std::int32_t { kStream = 0, kMemory = 2 };

    void ReadDataBuffer(char* buffer, long* count);

    std::istream* stream = nullptr;
    SourceKind sourceKind;
    const char* imageCursor = nullptr;
    const char* imageEnd = nullptr;
    std::exception_ptr thrown;  // by the stream, after bytes that were returned first
};

}  // namespace lexon_private
