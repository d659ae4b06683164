#include "host/CoreFoundation/CoreFoundation.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "host/CoreFoundation/LiveObjects.h"
#include "tests/Environment.h"

namespace {

using namespace std::literals;

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
using String = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release>;

String FromBytes(std::string_view bytes, CFStringEncoding encoding, bool external = false) {
    return String(CFStringCreateWithBytes(kCFAllocatorDefault,
                                          reinterpret_cast<const UInt8*>(bytes.data()),
                                          static_cast<CFIndex>(bytes.size()), encoding, external));
}

String FromUnits(std::u16string_view units) {
    return String(CFStringCreateWithCharactersNoCopy(
        kCFAllocatorDefault, reinterpret_cast<const UniChar*>(units.data()),
        static_cast<CFIndex>(units.size()), kCFAllocatorNull));
}

constexpr const char16_t* kNone = u"no string";

std::u16string Units(const String& string) {
    if (string == nullptr) return kNone;
    std::u16string units(static_cast<std::size_t>(CFStringGetLength(string.get())), u'\0');
    CFStringGetCharacters(string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
                          reinterpret_cast<UniChar*>(units.data()));
    return units;
}

// The number of converted units, and the result.
using Converted = std::pair<CFIndex, std::string>;

Converted GetBytes(const String& string, CFStringEncoding encoding, UInt8 lossByte, CFIndex room) {
    char buffer[64];
    CFIndex used = 0;
    const CFIndex converted =
        CFStringGetBytes(string.get(), CFRangeMake(0, CFStringGetLength(string.get())), encoding,
                         lossByte, false, reinterpret_cast<UInt8*>(buffer), room, &used);
    return {converted, std::string(buffer, static_cast<std::size_t>(used))};
}

// Every test releases all references that it gets.
class CoreFoundation : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(before, host::cf::LiveObjectCount()); }

private:
    std::size_t before = host::cf::LiveObjectCount();
};

TEST_F(CoreFoundation, EncodingsConvertBothWaysUnderTheirNumbers) {
    const std::tuple<CFStringEncoding, const char*, std::u16string> rows[] = {
        {0x08000100, "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80", u"a\u00E9\u4E2D\U0001F600"},
        {0x0600, "plain\x7F", u"plain\u007F"},
        {0x0000, "\x8E\xDB", u"\u00E9\u20AC"},
        {0x0201, "\x80\xE9\xFF", u"\u0080\u00E9\u00FF"},
        {0x0202, "\xB1\xF8", u"\u0105\u0159"},
        {0x0205, "\xB0\xEF", u"\u0410\u044F"},
        {0x0209, "\xDD\xFE", u"\u0130\u015F"},
        {0x020F, "\xA4\xBD", u"\u20AC\u0153"},
        {0x0500, "\x80\x93", u"\u20AC\u201C"},
        {0x0501, "\x8C\xB9", u"\u015A\u0105"},
        {0x0502, "\xC0\xFF", u"\u0410\u044F"},
        {0x0503, "\xC1\xFE", u"\u0391\u03CE"},
        {0x0504, "\xDD\xFE", u"\u0130\u015F"},
        {0x0632, "\xD6\xD0\x94\x39\xFC\x36", u"\u4E2D\U0001F600"},
        {0x0920, "\xC6\xFC\x8E\xB1", u"\u65E5\uFF71"},
        {0x0940, "\xC7\xD1", u"\uD55C"},
        {0x0A01, "\x93\xFA\x5C\x1A\x1C\x7F", u"\u65E5\\\u001A\u001C\u007F"},
        {0x0A02, "\xC1\xE1", u"\u0430\u0410"},
        {0x0A03, "\xA4\xA4", u"\u4E2D"},
        {0x14000100, "\x2D\x4E", u"\u4E2D"},
        {0x10000100, "\x4E\x2D", u"\u4E2D"}};
    for (const auto& [number, bytes, units] : rows) {
        SCOPED_TRACE(number);
        EXPECT_EQ(units, Units(FromBytes(bytes, number)));
        EXPECT_EQ(Converted(units.size(), bytes), GetBytes(FromUnits(units), number, 0, 64));
    }
    for (const CFStringEncoding other :
         {0x0007U, 0x001DU, 0x0023U, 0x0203U, 0x0204U, 0x0206U, 0x0207U, 0x0208U, 0x020DU, 0x0420U,
          0x0421U, 0x0422U, 0x0423U, 0x0505U, 0x0506U, 0x0507U, 0x0508U, 0x0930U, 0x0A08U})
        EXPECT_EQ(Converted(1, "?"), GetBytes(FromUnits(u"\uFFFF"), other, '?', 64)) << other;
}

TEST_F(CoreFoundation, BytesAreTakenStrictlyAndMarksReadWhenExternal) {
    const auto refuse = [](CFStringEncoding number, std::initializer_list<const char*> texts) {
        for (const char* text : texts)
            EXPECT_EQ(kNone, Units(FromBytes(text, number))) << number << ' ' << text;
    };
    // Cut, overlong, a surrogate, above U+10FFFF.
    refuse(kCFStringEncodingUTF8, {"ab\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"});
    refuse(kCFStringEncodingASCII, {"a\x80"});
    refuse(kCFStringEncodingShiftJIS, {"\x93", "\x93\x20"});
    refuse(kCFStringEncodingEUC_JP, {"\x8F\xA1"});
    refuse(kCFStringEncodingWindowsGreek, {"\xD2"});  // a hole in the table
    refuse(kCFStringEncodingUTF16, {"a"});
    const auto check = [](CFStringEncoding number, bool external, std::string_view bytes,
                          const char16_t* units) {
        const String text = FromBytes(bytes, number, external);
        EXPECT_EQ(units, Units(text)) << number << ' ' << bytes;
        EXPECT_EQ(units[0], CFStringGetCharactersPtr(text.get())[0]);
    };
    check(kCFStringEncodingUTF16, true, "\0A\0B"sv, u"AB");
    check(kCFStringEncodingUTF16, true, "\xFE\xFF\0A"sv, u"A");
    check(kCFStringEncodingUTF16, true, "\xFF\xFE\x41\0"sv, u"A");
    check(kCFStringEncodingUTF16BE, true, "\xFE\xFF\0A"sv, u"\uFEFFA");
    check(kCFStringEncodingUTF16LE, false, "\xFF\xFE\x3D\xD8"sv, u"\uFEFF\xD83D");
    check(kCFStringEncodingUTF8, true, "\xEF\xBB\xBF\x41"sv, u"A");
    check(kCFStringEncodingUTF8, false, "\xEF\xBB\xBF\x41"sv, u"\uFEFFA");
}

TEST_F(CoreFoundation, CStringsAndPascalStringsAreWholeOrEmpty) {
    const struct {
        std::u16string text;
        CFStringEncoding encoding;
        CFIndex room;
        std::string expected;  // "none" for a failure
    } rows[] = {
        {u"a\u00E9", kCFStringEncodingUTF8, 4, "a\xC3\xA9"},
        {u"a\u00E9", kCFStringEncodingUTF8, 3, "none"},
        {u"a\u00E9", kCFStringEncodingASCII, 4, "none"},
        {u"", kCFStringEncodingASCII, 1, ""},
        {u"", kCFStringEncodingASCII, 0, "none"},
        {u"\u6161", kCFStringEncodingUTF16, 4, "aa"},  // without a mark
        {std::u16string(255, u'a'), kCFStringEncodingASCII, 300, std::string(255, 'a')},
    };
    for (const auto& [text, encoding, room, expected] : rows) {
        const String string = FromUnits(text);
        char bytes[300] = "old";
        const bool fits = CFStringGetCString(string.get(), bytes, room, encoding);
        EXPECT_EQ(expected, fits ? bytes : "none") << room;
        EXPECT_EQ(room == 0 ? "old" : fits ? expected : "", std::string(bytes)) << room;

        unsigned char counted[300] = {9};
        const bool holds = CFStringGetPascalString(string.get(), counted, room, encoding);
        EXPECT_EQ(fits, holds) << room;
        EXPECT_EQ(room == 0 ? 9U : fits ? expected.size() : 0U, counted[0]) << room;
        const auto* const content = reinterpret_cast<const char*>(counted) + 1;
        EXPECT_EQ(holds ? expected : "", std::string(content, holds ? counted[0] : 0)) << room;
    }
    unsigned char counted[300];
    EXPECT_FALSE(CFStringGetPascalString(FromUnits(std::u16string(256, u'a')).get(), counted, 300,
                                         kCFStringEncodingASCII));
    EXPECT_EQ(3, CFStringGetBytes(FromUnits(u"abcdef").get(), CFRangeMake(2, 3),
                                  kCFStringEncodingASCII, 0, false, counted, 300, nullptr));
    EXPECT_EQ("cde", std::string(counted, counted + 3));
}

TEST_F(CoreFoundation, TheCodesetOfTheEnvironmentsLocaleIsTheSystemsEncoding) {
    const std::pair<const char*, CFStringEncoding> rows[] = {
        {"", kCFStringEncodingUTF8},
        {"LC_ALL=C", kCFStringEncodingUTF8},
        {"LANG=de_DE.ISO-8859-1", kCFStringEncodingISOLatin1},
        {"LANG=de_DE.iso88591@euro", kCFStringEncodingISOLatin1},
        {"LANG=de_DE.ISO-8859-1 LC_CTYPE=ja_JP.EUC-JP", kCFStringEncodingEUC_JP},
        {"LC_CTYPE=ja_JP.EUC-JP LC_ALL=ru_RU.KOI8-R", kCFStringEncodingKOI8_R},
        {"LC_MESSAGES=de_DE.ISO-8859-1", kCFStringEncodingUTF8},
        {"LANG=de_DE.unknown", kCFStringEncodingUTF8},
    };
    for (const auto& [environment, expected] : rows) {
        SetEnvironment(environment);
        EXPECT_EQ(expected, CFStringGetSystemEncoding()) << environment;
    }
    SetEnvironment("");
}

TEST_F(CoreFoundation, AnObjectLivesUntilItsLastReferenceIsReleased) {
    const String text = FromUnits(u"text");
    const std::size_t withText = host::cf::LiveObjectCount();
    EXPECT_EQ(text.get(), CFRetain(text.get()));
    CFRelease(text.get());
    EXPECT_EQ(withText, host::cf::LiveObjectCount());
    const CFStringRef constant = CFSTR("constant");
    const std::size_t withConstant = host::cf::LiveObjectCount();
    for (int i = 0; i < 2; ++i)
        CFRelease(constant);
    EXPECT_EQ(withConstant, host::cf::LiveObjectCount());
    EXPECT_EQ(8, CFStringGetLength(constant));
}

}  // namespace
