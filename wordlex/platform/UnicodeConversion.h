#pragma once
#include <cstdint>

#include "wordlex/functionality/EncodingInfo.h"

namespace lexon_private {

// The application's default encoding: a CoreFoundation encoding number, for conversions that have
// neither a selector nor a library default.
inline constexpr std::uint32_t applTextEncNotSet = 0xFFFFFFFF;
extern std::uint32_t defApplTextEncoding;

// The default conversion procedures, on CoreFoundation's strings.
// Encoding: selector 1 is UTF-8, any other selector the system's encoding. Without a selector, the
//            application's default encoding is used, else the system's. An unknown number is the
//            system's.
// Failure:  bytes that are not valid text convert to nothing; characters that the encoding lacks
//            become '?'. A destination too small for UTF-16 returns 'PARM' and stays unchanged; one
//            too small for bytes gets the whole characters that fit.
class UnicodeConversion {
public:
    static std::int64_t ToUnicodeSize(const unsigned char* bytes, unsigned long byteCount,
                                      unsigned long& unitCount, EncodingInfo* encoding);
    static std::int64_t ConvertToUnicode(const unsigned char* bytes, unsigned long byteCount,
                                         unsigned short* units, unsigned long unitCapacity,
                                         EncodingInfo* encoding);
    // Counts one byte more than the text needs, for a terminator.
    static std::int64_t FromUnicodeSize(const unsigned short* units, unsigned long unitCount,
                                        unsigned long& byteCount, EncodingInfo* encoding);
    static std::int64_t ConvertFromUnicode(const unsigned short* units, unsigned long unitCount,
                                           char* bytes, unsigned long byteCapacity,
                                           unsigned long& bytesWritten, EncodingInfo* encoding);
};

}  // namespace lexon_private
