#include "host/CoreFoundation/Codec.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/CoreFoundation/Environment.h"

namespace host::cf {

namespace {

constexpr Form kUtf16Host =
    std::endian::native == std::endian::big ? Form::kUtf16Big : Form::kUtf16Little;

// Where two rows share a converter, a locale's codeset means the first row. Every table is a
// superset of ASCII and has no state between characters.
constexpr Encoding encodings[] = {
    {kCFStringEncodingUTF8, Form::kUtf8, "UTF-8"},
    {kCFStringEncodingUTF16, kUtf16Host, nullptr},
    {kCFStringEncodingUTF16BE, Form::kUtf16Big, nullptr},
    {kCFStringEncodingUTF16LE, Form::kUtf16Little, nullptr},
    {kCFStringEncodingASCII, Form::kAscii, "US-ASCII"},
    {kCFStringEncodingISOLatin1, Form::kLatin1, "ISO-8859-1"},
    {kCFStringEncodingISOLatin2, Form::kTable, "ISO-8859-2"},
    {kCFStringEncodingISOLatin3, Form::kTable, "ISO-8859-3"},
    {kCFStringEncodingISOLatin4, Form::kTable, "ISO-8859-4"},
    {kCFStringEncodingISOLatinCyrillic, Form::kTable, "ISO-8859-5"},
    {kCFStringEncodingISOLatinArabic, Form::kTable, "ISO-8859-6"},
    {kCFStringEncodingISOLatinGreek, Form::kTable, "ISO-8859-7"},
    {kCFStringEncodingISOLatinHebrew, Form::kTable, "ISO-8859-8"},
    {kCFStringEncodingISOLatin5, Form::kTable, "ISO-8859-9"},
    {kCFStringEncodingISOLatin7, Form::kTable, "ISO-8859-13"},
    {kCFStringEncodingISOLatin9, Form::kTable, "ISO-8859-15"},
    {kCFStringEncodingWindowsLatin1, Form::kTable, "windows-1252"},
    {kCFStringEncodingWindowsLatin2, Form::kTable, "windows-1250"},
    {kCFStringEncodingWindowsCyrillic, Form::kTable, "windows-1251"},
    {kCFStringEncodingWindowsGreek, Form::kTable, "windows-1253"},
    {kCFStringEncodingWindowsLatin5, Form::kTable, "windows-1254"},
    {kCFStringEncodingWindowsHebrew, Form::kTable, "windows-1255"},
    {kCFStringEncodingWindowsArabic, Form::kTable, "windows-1256"},
    {kCFStringEncodingWindowsBalticRim, Form::kTable, "windows-1257"},
    {kCFStringEncodingWindowsVietnamese, Form::kTable, "windows-1258"},
    {kCFStringEncodingMacRoman, Form::kTable, "macintosh"},
    {kCFStringEncodingMacCyrillic, Form::kTable, "x-mac-cyrillic"},
    {kCFStringEncodingMacCentralEurRoman, Form::kTable, "x-mac-centraleurroman"},
    {kCFStringEncodingMacTurkish, Form::kTable, "x-mac-turkish"},
    {kCFStringEncodingShiftJIS, Form::kTable, "Shift_JIS"},
    {kCFStringEncodingEUC_JP, Form::kTable, "EUC-JP"},
    {kCFStringEncodingGB_18030_2000, Form::kTable, "GB18030"},
    {kCFStringEncodingEUC_CN, Form::kTable, "EUC-CN"},
    {kCFStringEncodingBig5, Form::kTable, "Big5"},
    {kCFStringEncodingEUC_KR, Form::kTable, "EUC-KR"},
    {kCFStringEncodingKOI8_R, Form::kTable, "KOI8-R"},
    {kCFStringEncodingKOI8_U, Form::kTable, "KOI8-U"},
    {kCFStringEncodingDOSJapanese, Form::kTable, "windows-31j"},
    {kCFStringEncodingDOSChineseSimplif, Form::kTable, "GBK"},
    {kCFStringEncodingDOSKorean, Form::kTable, "windows-949"},
    {kCFStringEncodingDOSChineseTrad, Form::kTable, "windows-950"},
};
constexpr const Encoding& utf8 = encodings[0];
static_assert(utf8.number == kCFStringEncodingUTF8);

// ICU's canonical name for any of a converter's names; empty for an unknown name.
std::string_view CanonicalName(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const canonical = ucnv_getAlias(name, 0, &status);
    return canonical == nullptr ? std::string_view() : canonical;
}

const Encoding* FindByNumber(CFStringEncoding number) {
    const auto row = std::ranges::find(encodings, number, &Encoding::number);
    return row == std::end(encodings) ? nullptr : row;
}

const Encoding* FindByCodeset(const std::string& codeset) {
    static const auto names = [] {
        std::array<std::string_view, std::size(encodings)> canonical;
        std::ranges::transform(encodings, canonical.begin(), [](const Encoding& row) {
            return row.converter == nullptr ? std::string_view() : CanonicalName(row.converter);
        });
        return canonical;
    }();
    const std::string_view wanted = CanonicalName(codeset.c_str());
    if (wanted.empty()) return nullptr;
    const auto name = std::ranges::find(names, wanted);
    return name == names.end() ? nullptr : &encodings[name - names.begin()];
}

const Encoding& SystemEncoding() {
    const std::string_view locale = FirstSetVariable({"LC_ALL", "LC_CTYPE", "LANG"});
    const std::size_t dot = locale.find('.');
    const Encoding* named = nullptr;
    if (dot != locale.npos) {
        const std::string_view codeset = locale.substr(dot + 1);
        named = FindByCodeset(std::string(codeset.substr(0, codeset.find('@'))));
    }
    return named != nullptr ? *named : utf8;
}

const Encoding& ByNumber(CFStringEncoding number) {
    const Encoding* const known = FindByNumber(number);
    return known != nullptr ? *known : SystemEncoding();
}

void Append(char32_t character, std::vector<UniChar>& text) {
    if (U_IS_BMP(character)) {
        text.push_back(static_cast<UniChar>(character));
    } else {
        text.push_back(U16_LEAD(character));
        text.push_back(U16_TRAIL(character));
    }
}

}  // namespace

void Codec::Close::operator()(UConverter* open) const noexcept { ucnv_close(open); }

Codec::Codec(CFStringEncoding number) : encoding(ByNumber(number)) {}

UConverter* Codec::Converter() {
    if (converter != nullptr) return converter.get();
    UErrorCode status = U_ZERO_ERROR;
    converter.reset(ucnv_open(encoding.converter, &status));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("ICU cannot convert ") + encoding.converter);
    return converter.get();
}

bool Codec::Decode(std::span<const UInt8> bytes, std::vector<UniChar>& text) {
    switch (encoding.form) {
        case Form::kUtf8:
            return DecodeUtf8(bytes, text);
        case Form::kUtf16Big:
        case Form::kUtf16Little:
            return DecodeUtf16(bytes, text);
        case Form::kAscii:
            if (!std::ranges::all_of(bytes, [](UInt8 byte) { return byte < 0x80; })) return false;
            [[fallthrough]];
        case Form::kLatin1:
            text.insert(text.end(), bytes.begin(), bytes.end());
            return true;
        case Form::kTable:
            return DecodeTable(bytes, text);
    }
    return false;
}

bool Codec::DecodeUtf8(std::span<const UInt8> bytes, std::vector<UniChar>& text) {
    text.reserve(text.size() + bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        UChar32 character;
        U8_NEXT(bytes, i, bytes.size(), character);
        if (character < 0) return false;
        Append(static_cast<char32_t>(character), text);
    }
    return true;
}

bool Codec::DecodeUtf16(std::span<const UInt8> bytes, std::vector<UniChar>& text) const {
    if (bytes.size() % 2 != 0) return false;
    text.reserve(text.size() + bytes.size() / 2);
    const std::size_t high = encoding.form == Form::kUtf16Big ? 0 : 1;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        text.push_back(static_cast<UniChar>(bytes[i + high] << 8 | bytes[i + 1 - high]));
    return true;
}

bool Codec::DecodeTable(std::span<const UInt8> bytes, std::vector<UniChar>& text) {
    text.reserve(text.size() + bytes.size());
    while (!bytes.empty()) {
        // Not left to ICU: its Shift-JIS swaps some control characters.
        if (bytes.front() < 0x80) {
            text.push_back(bytes.front());
            bytes = bytes.subspan(1);
            continue;
        }
        // At most one character at a time: ICU rejects a source of 2 GiB or more.
        const auto window = bytes.first(std::min<std::size_t>(bytes.size(), kMaxBytes));
        const auto* const start = reinterpret_cast<const char*>(window.data());
        const char* next = start;
        UErrorCode status = U_ZERO_ERROR;
        const UChar32 character =
            ucnv_getNextUChar(Converter(), &next, start + window.size(), &status);
        if (U_FAILURE(status)) return false;
        Append(static_cast<char32_t>(character), text);
        bytes = bytes.subspan(static_cast<std::size_t>(next - start));
    }
    return true;
}

int Codec::Encode(char32_t character, UInt8 (&bytes)[kMaxBytes]) {
    int count = 0;
    switch (encoding.form) {
        case Form::kUtf8:
            if (!U_IS_SURROGATE(character)) U8_APPEND_UNSAFE(bytes, count, character);
            break;
        case Form::kUtf16Big:
        case Form::kUtf16Little: {
            UniChar units[2];
            int unitCount = 0;
            U16_APPEND_UNSAFE(units, unitCount, character);
            const int high = encoding.form == Form::kUtf16Big ? 0 : 1;
            for (; count < 2 * unitCount; count += 2) {
                bytes[count + high] = static_cast<UInt8>(units[count / 2] >> 8);
                bytes[count + 1 - high] = static_cast<UInt8>(units[count / 2] & 0xFF);
            }
            break;
        }
        case Form::kAscii:
        case Form::kLatin1:
            if (character < (encoding.form == Form::kAscii ? 0x80U : 0x100U))
                bytes[count++] = static_cast<UInt8>(character);
            break;
        case Form::kTable:
            count = EncodeTable(character, bytes);
            break;
    }
    return count;
}

int Codec::EncodeTable(char32_t character, UInt8 (&bytes)[kMaxBytes]) {
    if (character < 0x80) {
        bytes[0] = static_cast<UInt8>(character);
        return 1;
    }
    UChar units[2];
    int unitCount = 0;
    U16_APPEND_UNSAFE(units, unitCount, character);
    const UChar* source = units;
    auto* const start = reinterpret_cast<char*>(bytes);
    char* end = start;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_resetFromUnicode(Converter());
    ucnv_fromUnicode(Converter(), &end, start + kMaxBytes, &source, units + unitCount, nullptr,
                     true, &status);
    // ICU reports success for a missing character that is invisible (such as U+200B) and writes
    // nothing.
    return U_FAILURE(status) ? 0 : static_cast<int>(end - start);
}

}  // namespace host::cf

CFStringEncoding CFStringGetSystemEncoding() { return host::cf::SystemEncoding().number; }
