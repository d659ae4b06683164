#pragma once
#include <cstdint>

#include "wordlex/functionality/Buffer.h"
#include "wordlex/functionality/EncodingInfo.h"

namespace lexon_private {

// Procedures that convert between 8-bit text and UTF-16. Sizes are bytes for 8-bit text, units for
// UTF-16. Each returns 0, or a status that the caller throws as an ASErrException's code. A null
// selector means the application's default encoding.
using ToUnicodeSizeProc = std::int64_t (*)(const unsigned char* bytes, unsigned long byteCount,
                                           unsigned long& unitCount, EncodingInfo* encoding);
using ConvertToUnicodeProc = std::int64_t (*)(const unsigned char* bytes, unsigned long byteCount,
                                              unsigned short* units, unsigned long unitCapacity,
                                              EncodingInfo* encoding);
using FromUnicodeSizeProc = std::int64_t (*)(const unsigned short* units, unsigned long unitCount,
                                             unsigned long& byteCount,  // with one for a terminator
                                             EncodingInfo* encoding);
using ConvertFromUnicodeProc = std::int64_t (*)(const unsigned short* units,
                                                unsigned long unitCount, char* bytes,
                                                unsigned long byteCapacity,
                                                unsigned long& bytesWritten,
                                                EncodingInfo* encoding);
// Negative, 0 or positive as the first text orders before, with or after the second.
using CompareProc = int (*)(const unsigned short* a, unsigned long aLength, const unsigned short* b,
                            unsigned long bLength);

// Comparison, measuring, number parsing and conversion of UTF-16 text.
// Failure: a procedure's status is thrown as ASErrException. Bytes that are not valid text convert
//          to nothing, and characters that an encoding lacks become '?': neither is an error.
// Threads: the procedures and the default encoding are plain globals: set them at start-up.
class UnicodeUtil {
public:
    // Orders by the first units that differ, then by length; returns the difference.
    static int DefaultCompareProc(const unsigned short* a, unsigned long aLength,
                                  const unsigned short* b, unsigned long bLength);
    // Null restores the default. Returns the procedure now in use.
    static CompareProc SetCompareProc(CompareProc proc);
    static int Compare(const unsigned short* a, unsigned long aLength, const unsigned short* b,
                       unsigned long bLength) {
        return sCompareProc(a, aLength, b, bLength);
    }

    // Each null restores that default.
    static void SetConversionProcs(ToUnicodeSizeProc toSize, ConvertToUnicodeProc toUnicode,
                                   FromUnicodeSizeProc fromSize,
                                   ConvertFromUnicodeProc fromUnicode);
    static bool UsingDefaultConverters();

    // The selector for conversions without one; keeps the pointer.
    static void SetDefaultEncoding(EncodingInfo* encoding) { sDefaultEncoding = encoding; }
    static EncodingInfo* GetDefaultEncoding() { return sDefaultEncoding; }
    static EncodingInfo* CheckForDefaultEncoding(EncodingInfo* encoding) {
        return encoding != nullptr ? encoding : sDefaultEncoding;
    }

    static unsigned long ToUnicodeSize(const unsigned char* bytes, unsigned long byteCount,
                                       EncodingInfo* encoding);
    // Replaces the buffer's units. A failed conversion sets their number, not their values.
    static void StringToUnicode(const unsigned char* bytes, unsigned long byteCount,
                                Buffer<unsigned short>& units, EncodingInfo* encoding);
    // Bytes with one for a terminator.
    static unsigned long FromUnicodeSize(const unsigned short* units, unsigned long unitCount,
                                         EncodingInfo* encoding);
    // Cut at a whole character when text and NUL need more than `capacity` bytes. With 0 nothing is
    // written. A null destination throws 'BUFF'.
    static void UnicodeToCString(const unsigned short* units, unsigned long unitCount,
                                 char* destination, unsigned long capacity, EncodingInfo* encoding);
    // The same with a count byte before the text instead of the NUL after it. The count byte has
    // the low 8 bits of the count, so a destination of more than 256 bytes makes no sense.
    static void UnicodeToPascalString(const unsigned short* units, unsigned long unitCount,
                                      unsigned char* destination, unsigned long capacity,
                                      EncodingInfo* encoding);

    static unsigned long StringLength(const unsigned short* text);  // units before the first 0
    // Decimal digits of any script after an ASCII sign. Other units are skipped and make the result
    // false; so does an empty text. Overflow wraps.
    static bool StringToInteger(const unsigned short* units, unsigned long count, long& result);

private:
    static ToUnicodeSizeProc sToUnicodeSizeProc;
    static ConvertToUnicodeProc sConvertToUnicodeProc;
    static FromUnicodeSizeProc sFromUnicodeSizeProc;
    static ConvertFromUnicodeProc sConvertFromUnicodeProc;
    static CompareProc sCompareProc;
    static EncodingInfo* sDefaultEncoding;
};

}  // namespace lexon_private
