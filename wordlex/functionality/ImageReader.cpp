#include "wordlex/functionality/ImageReader.h"

#include <istream>

namespace lexon_private {

const char* Describe(ImageFault fault) noexcept {
    switch (fault) {
        case ImageFault::kNone:
            break;
        case ImageFault::kCutShort:
            return "the file ends early";
        case ImageFault::kUnknownVersion:
            return "unknown version";
        case ImageFault::kIdBaseConflict:
            return "the id base does not follow the entries loaded before";
        case ImageFault::kTooManyEntries:
            return "more entries than there are ids";
        case ImageFault::kKeyOutside:
            return "a key is outside the key area";
        case ImageFault::kValueOutside:
            return "a value is outside the value area";
        case ImageFault::kAcceleratorOutside:
            return "an accelerator is outside the accelerator area";
        case ImageFault::kTooMuchSharing:
            return "strings that share bytes add up to more than 16 times the file";
        case ImageFault::kSlotOutside:
            return "a hash slot above 1020";
        case ImageFault::kIdOutside:
            return "an entry id after the last entry";
        case ImageFault::kTableDecreases:
            return "a cumulative table decreases or splits an entry";
    }
    return "no fault";
}

ImageReader::ImageReader(const char* begin, const char* end, lexon::EndianT order) noexcept
    : cursor(reinterpret_cast<const unsigned char*>(begin)),
      left(static_cast<std::uint64_t>(end - begin)),
      swap(setEndian(order)) {}

ImageReader::ImageReader(std::istream& source, lexon::EndianT order)
    : stream(&source), endKnown(false), swap(setEndian(order)) {
    if (!source.good()) return;
    std::streambuf& buffer = *source.rdbuf();
    const std::streamoff here = buffer.pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    if (here < 0) return;
    const std::streamoff end = buffer.pubseekoff(0, std::ios_base::end, std::ios_base::in);
    if (buffer.pubseekpos(here, std::ios_base::in) != std::streampos(here)) {
        source.setstate(std::ios_base::failbit);
    }
    // Some streams do not know their end: a system's file that is made while it is read.
    if (end < here) return;
    left = static_cast<std::uint64_t>(end - here);
    endKnown = true;
}

void ImageReader::Reject(ImageFault why, std::uint64_t where) noexcept {
    if (!Ok()) return;
    fault = why;
    faultOffset = where;
}

bool ImageReader::AtEnd() {
    // A stream that promises more may still fail here.
    return InMemory() ? left == 0 : stream->peek() == std::istream::traits_type::eof();
}

bool ImageReader::Expect(std::uint64_t byteCount) noexcept {
    if (byteCount > left) Reject(ImageFault::kCutShort, offset);
    return Ok();
}

bool ImageReader::Take(void* destination, std::uint64_t byteCount) {
    if (!Expect(byteCount)) return false;
    if (InMemory()) {
        if (byteCount != 0) std::memcpy(destination, cursor, byteCount);
        cursor += byteCount;
    } else {
        const auto wanted = static_cast<std::streamsize>(byteCount);
        stream->read(static_cast<char*>(destination), wanted);
        if (stream->gcount() != wanted) {
            Reject(ImageFault::kCutShort, offset);
            return false;
        }
    }
    left -= byteCount;
    offset += byteCount;
    return true;
}

ImageBytes ImageReader::GetBytes(std::uint64_t byteCount) {
    if (!InMemory()) return ImageBytes(GetTable<unsigned char>(byteCount));
    if (!Expect(byteCount)) return {};
    ImageBytes bytes({cursor, static_cast<std::size_t>(byteCount)});
    cursor += byteCount;
    left -= byteCount;
    offset += byteCount;
    return bytes;
}

}  // namespace lexon_private
