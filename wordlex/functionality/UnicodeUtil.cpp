#include "wordlex/functionality/UnicodeUtil.h"

#include <algorithm>

#include "wordlex/functionality/UnicodeChar.h"
#include "wordlex/platform/UnicodeConversion.h"

namespace lexon_private {

constinit ToUnicodeSizeProc UnicodeUtil::sToUnicodeSizeProc = UnicodeConversion::ToUnicodeSize;
constinit ConvertToUnicodeProc UnicodeUtil::sConvertToUnicodeProc =
    UnicodeConversion::ConvertToUnicode;
constinit FromUnicodeSizeProc UnicodeUtil::sFromUnicodeSizeProc =
    UnicodeConversion::FromUnicodeSize;
constinit ConvertFromUnicodeProc UnicodeUtil::sConvertFromUnicodeProc =
    UnicodeConversion::ConvertFromUnicode;
constinit CompareProc UnicodeUtil::sCompareProc = UnicodeUtil::DefaultCompareProc;
constinit EncodingInfo* UnicodeUtil::sDefaultEncoding = nullptr;

namespace {

void ThrowUnlessZero(std::int64_t status) {
    if (status != 0) throw lexon::ASErrException(status);
}

void RequireDestination(const void* destination) {
    if (destination == nullptr) {
        throw lexon::ASErrException(lexon::ASErrException::kShortBuffer);
    }
}

}  // namespace

int UnicodeUtil::DefaultCompareProc(const unsigned short* a, unsigned long aLength,
                                    const unsigned short* b, unsigned long bLength) {
    const unsigned long common = std::min(aLength, bLength);
    for (unsigned long i = 0; i < common; ++i) {
        if (a[i] != b[i]) return a[i] - b[i];
    }
    return static_cast<int>(aLength - bLength);
}

CompareProc UnicodeUtil::SetCompareProc(CompareProc proc) {
    sCompareProc = proc != nullptr ? proc : DefaultCompareProc;
    return sCompareProc;
}

void UnicodeUtil::SetConversionProcs(ToUnicodeSizeProc toSize, ConvertToUnicodeProc toUnicode,
                                     FromUnicodeSizeProc fromSize,
                                     ConvertFromUnicodeProc fromUnicode) {
    sToUnicodeSizeProc = toSize != nullptr ? toSize : UnicodeConversion::ToUnicodeSize;
    sConvertToUnicodeProc = toUnicode != nullptr ? toUnicode : UnicodeConversion::ConvertToUnicode;
    sFromUnicodeSizeProc = fromSize != nullptr ? fromSize : UnicodeConversion::FromUnicodeSize;
    sConvertFromUnicodeProc =
        fromUnicode != nullptr ? fromUnicode : UnicodeConversion::ConvertFromUnicode;
}

bool UnicodeUtil::UsingDefaultConverters() {
    return sToUnicodeSizeProc == UnicodeConversion::ToUnicodeSize &&
           sConvertToUnicodeProc == UnicodeConversion::ConvertToUnicode &&
           sFromUnicodeSizeProc == UnicodeConversion::FromUnicodeSize &&
           sConvertFromUnicodeProc == UnicodeConversion::ConvertFromUnicode;
}

unsigned long UnicodeUtil::ToUnicodeSize(const unsigned char* bytes, unsigned long byteCount,
                                         EncodingInfo* encoding) {
    unsigned long unitCount = 0;
    ThrowUnlessZero(
        sToUnicodeSizeProc(bytes, byteCount, unitCount, CheckForDefaultEncoding(encoding)));
    return unitCount;
}

void UnicodeUtil::StringToUnicode(const unsigned char* bytes, unsigned long byteCount,
                                  Buffer<unsigned short>& units, EncodingInfo* encoding) {
    const unsigned long unitCount = ToUnicodeSize(bytes, byteCount, encoding);
    units.Reserve(unitCount);
    const std::int64_t status = sConvertToUnicodeProc(bytes, byteCount, units.GetData(), unitCount,
                                                      CheckForDefaultEncoding(encoding));
    units.SetLength(unitCount);
    ThrowUnlessZero(status);
}

unsigned long UnicodeUtil::FromUnicodeSize(const unsigned short* units, unsigned long unitCount,
                                           EncodingInfo* encoding) {
    unsigned long byteCount = 0;
    ThrowUnlessZero(
        sFromUnicodeSizeProc(units, unitCount, byteCount, CheckForDefaultEncoding(encoding)));
    return byteCount;
}

void UnicodeUtil::UnicodeToCString(const unsigned short* units, unsigned long unitCount,
                                   char* destination, unsigned long capacity,
                                   EncodingInfo* encoding) {
    RequireDestination(destination);
    if (capacity == 0) return;
    unsigned long written = 0;
    ThrowUnlessZero(sConvertFromUnicodeProc(units, unitCount, destination, capacity - 1, written,
                                            CheckForDefaultEncoding(encoding)));
    destination[written] = '\0';
}

void UnicodeUtil::UnicodeToPascalString(const unsigned short* units, unsigned long unitCount,
                                        unsigned char* destination, unsigned long capacity,
                                        EncodingInfo* encoding) {
    RequireDestination(destination);
    if (capacity == 0) return;
    unsigned long written = 0;
    ThrowUnlessZero(sConvertFromUnicodeProc(units, unitCount,
                                            reinterpret_cast<char*>(destination + 1), capacity - 1,
                                            written, CheckForDefaultEncoding(encoding)));
    destination[0] = static_cast<unsigned char>(written);
}

unsigned long UnicodeUtil::StringLength(const unsigned short* text) {
    unsigned long length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

bool UnicodeUtil::StringToInteger(const unsigned short* units, unsigned long count, long& result) {
    result = 0;
    if (count == 0) return false;
    const bool negative = units[0] == u'-';
    bool onlyDigits = true;
    unsigned long value = 0;
    for (unsigned long i = negative || units[0] == u'+' ? 1 : 0; i < count; ++i) {
        const signed char digit = UnicodeChar::GetDecimalDigit(units[i]);
        if (digit < 0) {
            onlyDigits = false;
        } else {
            value = value * 10 + static_cast<unsigned long>(digit);
        }
    }
    result = static_cast<long>(negative ? 0 - value : value);
    return onlyDigits;
}

}  // namespace lexon_private
