#include "wordlex/platform/UnicodeConversion.h"

#include "wordlex/platform/CFOwner.h"

namespace lexon_private {

constinit std::uint32_t defApplTextEncoding = applTextEncNotSet;

namespace {

constexpr UInt8 kLossByte = '?';

CFStringEncoding PlatformEncoding(const EncodingInfo* encoding) {
    if (encoding != nullptr) {
        return encoding->selector == kUtf8Selector ? CFStringEncoding{kCFStringEncodingUTF8}
                                                   : CFStringGetSystemEncoding();
    }
    return defApplTextEncoding == applTextEncNotSet ? CFStringGetSystemEncoding()
                                                    : defApplTextEncoding;
}

// Null for bytes that are not valid text.
CFStringOwner StringFromBytes(const unsigned char* bytes, unsigned long byteCount,
                              const EncodingInfo* encoding) {
    return CFStringOwner(CFStringCreateWithBytes(kCFAllocatorDefault, bytes,
                                                 static_cast<CFIndex>(byteCount),
                                                 PlatformEncoding(encoding), false));
}

// The number of bytes that fit into `capacity`, or that the text needs when `bytes` is null.
unsigned long BytesOf(const unsigned short* units, unsigned long unitCount, char* bytes,
                      unsigned long capacity, const EncodingInfo* encoding) {
    const CFStringOwner string(CFStringCreateWithCharactersNoCopy(
        kCFAllocatorDefault, units, static_cast<CFIndex>(unitCount), kCFAllocatorNull));
    CFIndex used = 0;
    CFStringGetBytes(string.get(), CFRangeMake(0, static_cast<CFIndex>(unitCount)),
                     PlatformEncoding(encoding), kLossByte, false, reinterpret_cast<UInt8*>(bytes),
                     static_cast<CFIndex>(capacity), &used);
    return static_cast<unsigned long>(used);
}

}  // namespace

std::int64_t UnicodeConversion::ToUnicodeSize(const unsigned char* bytes, unsigned long byteCount,
                                              unsigned long& unitCount, EncodingInfo* encoding) {
    const CFStringOwner string = StringFromBytes(bytes, byteCount, encoding);
    unitCount = string == nullptr ? 0 : static_cast<unsigned long>(CFStringGetLength(string.get()));
    return 0;
}

std::int64_t UnicodeConversion::ConvertToUnicode(const unsigned char* bytes,
                                                 unsigned long byteCount, unsigned short* units,
                                                 unsigned long unitCapacity,
                                                 EncodingInfo* encoding) {
    const CFStringOwner string = StringFromBytes(bytes, byteCount, encoding);
    if (string == nullptr) return 0;
    const CFIndex length = CFStringGetLength(string.get());
    if (static_cast<unsigned long>(length) > unitCapacity) {
        return lexon::ASErrException::kBadParameter;
    }
    CFStringGetCharacters(string.get(), CFRangeMake(0, length), units);
    return 0;
}

std::int64_t UnicodeConversion::FromUnicodeSize(const unsigned short* units,
                                                unsigned long unitCount, unsigned long& byteCount,
                                                EncodingInfo* encoding) {
    byteCount = BytesOf(units, unitCount, nullptr, 0, encoding) + 1;
    return 0;
}

std::int64_t UnicodeConversion::ConvertFromUnicode(const unsigned short* units,
                                                   unsigned long unitCount, char* bytes,
                                                   unsigned long byteCapacity,
                                                   unsigned long& bytesWritten,
                                                   EncodingInfo* encoding) {
    bytesWritten = 0;
    // Without a destination the platform would count instead of writing.
    if (units == nullptr || byteCapacity == 0) return 0;
    bytesWritten = BytesOf(units, unitCount, bytes, byteCapacity, encoding);
    return 0;
}

}  // namespace lexon_private
