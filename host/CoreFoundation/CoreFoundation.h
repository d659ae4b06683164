#pragma once

// The part of CoreFoundation that the system calls, with CoreFoundation's names, types, numbers and
// signatures. On a Mac the real header replaces this one.
//
// Owns:    "Create" and "Copy" functions return one reference to the caller, "Get" functions none.
// Threads: objects are immutable and their reference counts atomic, so any thread may use and
//          release them. CFStringGetSystemEncoding and CFPreferencesCopyValue read the environment,
//          so no thread may change it meanwhile.
// Failure: a "Create" or "Copy" function returns null when the text or value does not exist.
//          Exhausted memory throws std::bad_alloc. An encoding whose data is missing from this
//          machine's ICU throws std::runtime_error. Neither leaks.

extern "C" {

using Boolean = unsigned char;
using UInt8 = unsigned char;
using UInt16 = unsigned short;
using UInt32 = unsigned int;
using UniChar = UInt16;
using StringPtr = unsigned char*;

using CFIndex = long;
using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct OpaqueCFAllocator*;
using CFStringRef = const struct OpaqueCFString*;
using CFArrayRef = const struct OpaqueCFArray*;
using CFDictionaryRef = const struct OpaqueCFDictionary*;

struct CFRange {
    CFIndex location;
    CFIndex length;
};

inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

// Objects

CFTypeRef CFRetain(CFTypeRef object);  // returns `object`
void CFRelease(CFTypeRef object);      // `object` is never null

extern const CFAllocatorRef kCFAllocatorDefault;  // null
extern const CFAllocatorRef kCFAllocatorNull;     // as a deallocator: the text stays the caller's

// Text encodings. A number that is not listed here is taken as the system encoding.

using CFStringEncoding = UInt32;
enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0x0000,
    kCFStringEncodingMacCyrillic = 0x0007,
    kCFStringEncodingMacCentralEurRoman = 0x001D,
    kCFStringEncodingMacTurkish = 0x0023,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF16 = 0x0100,  // host order, or as a byte order mark says
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingISOLatin2 = 0x0202,
    kCFStringEncodingISOLatin3 = 0x0203,
    kCFStringEncodingISOLatin4 = 0x0204,
    kCFStringEncodingISOLatinCyrillic = 0x0205,
    kCFStringEncodingISOLatinArabic = 0x0206,
    kCFStringEncodingISOLatinGreek = 0x0207,
    kCFStringEncodingISOLatinHebrew = 0x0208,
    kCFStringEncodingISOLatin5 = 0x0209,
    kCFStringEncodingISOLatin7 = 0x020D,
    kCFStringEncodingISOLatin9 = 0x020F,
    kCFStringEncodingDOSJapanese = 0x0420,
    kCFStringEncodingDOSChineseSimplif = 0x0421,
    kCFStringEncodingDOSKorean = 0x0422,
    kCFStringEncodingDOSChineseTrad = 0x0423,
    kCFStringEncodingWindowsLatin1 = 0x0500,      // 1252
    kCFStringEncodingWindowsLatin2 = 0x0501,      // 1250
    kCFStringEncodingWindowsCyrillic = 0x0502,    // 1251
    kCFStringEncodingWindowsGreek = 0x0503,       // 1253
    kCFStringEncodingWindowsLatin5 = 0x0504,      // 1254
    kCFStringEncodingWindowsHebrew = 0x0505,      // 1255
    kCFStringEncodingWindowsArabic = 0x0506,      // 1256
    kCFStringEncodingWindowsBalticRim = 0x0507,   // 1257
    kCFStringEncodingWindowsVietnamese = 0x0508,  // 1258
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingGB_18030_2000 = 0x0632,
    kCFStringEncodingEUC_JP = 0x0920,
    kCFStringEncodingEUC_CN = 0x0930,
    kCFStringEncodingEUC_KR = 0x0940,
    kCFStringEncodingShiftJIS = 0x0A01,
    kCFStringEncodingKOI8_R = 0x0A02,
    kCFStringEncodingBig5 = 0x0A03,
    kCFStringEncodingKOI8_U = 0x0A08,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
};

// The codeset of the environment's locale: the first of LC_ALL, LC_CTYPE and LANG that is not
// empty. UTF-8 when none is set or the codeset is unknown.
CFStringEncoding CFStringGetSystemEncoding();

// Strings: any UTF-16 units, lengths and ranges counted in units. `allocator` is always null or
// kCFAllocatorDefault. A range lies within the string.

// Conversions to Unicode are strict: invalid bytes return null. UTF-16 needs an even count and
// keeps unpaired surrogates. kCFStringEncodingUTF16 is in host order. With
// isExternalRepresentation, a byte order mark at the start of UTF-8 or kCFStringEncodingUTF16 is
// read and dropped; without a mark the latter is big-endian.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);

// Borrows the units, which must outlive the string. `contentsDeallocator` is kCFAllocatorNull.
CFStringRef CFStringCreateWithCharactersNoCopy(CFAllocatorRef allocator, const UniChar* units,
                                               CFIndex count, CFAllocatorRef contentsDeallocator);

// Formats as std::printf does, with format and %s arguments in UTF-8. Objects (%@) are not
// formatted. `formatOptions` is null.
CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef formatOptions,
                                     CFStringRef format, ...);

CFIndex CFStringGetLength(CFStringRef string);
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

// The string's own units, valid as long as the string. May return null; then use
// CFStringGetCharacters.
const UniChar* CFStringGetCharactersPtr(CFStringRef string);

// Converts a range and returns the number of units converted. The byte count goes to
// `usedByteCount` unless that is null. A null buffer only counts, whatever `maxByteCount` is. A
// full buffer stops the conversion before the first character that does not fit whole. A character
// that the encoding lacks becomes one lossByte (a surrogate pair too); with lossByte 0 the
// conversion stops there. Every encoding but UTF-16 lacks unpaired surrogates. With
// isExternalRepresentation, kCFStringEncodingUTF16 begins with a byte order mark.
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxByteCount, CFIndex* usedByteCount);

// Writes the whole text without loss, followed by a NUL, or else preceded by its length in one
// byte. False when the text does not fit (with a length: 255 bytes) or the encoding lacks a
// character. The buffer then contains the empty text, if it has room for that.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex bufferSize,
                                CFStringEncoding encoding);

// The constant string of a text in UTF-8. The same text always returns the same string. It lives
// until the process ends; retain and release have no effect.
CFStringRef CFStringFromLiteral(const char* text);
#define CFSTR(literal) CFStringFromLiteral("" literal "")

// Arrays

CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);  // borrowed from the array

// Preferences. The only one is "AppleLanguages", for any application, the current user and any
// host. It is an array of strings: the user's languages, the preferred one first, from LANGUAGE
// (separated by colons), else from the first of LC_ALL, LC_MESSAGES and LANG that is not empty.
// Codesets and modifiers are cut off. "C" and "POSIX" mean no language. Null when there is no
// language, and for every other preference.

extern const CFStringRef kCFPreferencesAnyApplication;
extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef application, CFStringRef user,
                                         CFStringRef host);

}  // extern "C"
