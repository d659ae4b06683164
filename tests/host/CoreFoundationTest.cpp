#include "host/CoreFoundation/CoreFoundation.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/CoreFoundation/LiveObjects.h"
#include "tests/host/ScopedVariables.h"

namespace {

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
    return String(CFStringCreateWithCharacters(kCFAllocatorDefault,
                                               reinterpret_cast<const UniChar*>(units.data()),
                                               static_cast<CFIndex>(units.size())));
}

constexpr const char16_t* kNone = u"no string";

std::u16string Units(const String& string) {
    if (string == nullptr) return kNone;
    std::u16string units(static_cast<std::size_t>(CFStringGetLength(string.get())), u'\0');
    CFStringGetCharacters(string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
                          reinterpret_cast<UniChar*>(units.data()));
    return units;
}

struct Bytes {
    CFIndex converted;
    std::string bytes;
    bool operator==(const Bytes&) const = default;
};

Bytes GetBytes(const String& string, CFStringEncoding encoding, UInt8 lossByte, CFIndex room,
               bool external = false) {
    UInt8 buffer[64];
    CFIndex used = 0;
    const CFIndex converted =
        CFStringGetBytes(string.get(), CFRangeMake(0, CFStringGetLength(string.get())), encoding,
                         lossByte, external, buffer, room, &used);
    return {converted,
            std::string(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(used))};
}

// Every test gives back what it was given.
class CoreFoundation : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(before, host::cf::LiveObjectCount()); }

private:
    std::size_t before = host::cf::LiveObjectCount();
};

TEST_F(CoreFoundation, EncodingsConvertBothWaysUnderTheirNumbers) {
    const struct {
        int line;
        CFStringEncoding number;
        const char* bytes;
        const char16_t* units;
    } rows[] = {
        {__LINE__, 0x08000100, "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80", u"a\u00E9\u4E2D\U0001F600"},
        {__LINE__, 0x0600, "plain\x7F", u"plain\u007F"},
        {__LINE__, 0x0000, "\x8E\xDB", u"\u00E9\u20AC"},
        {__LINE__, 0x0201, "\x80\xE9\xFF", u"\u0080\u00E9\u00FF"},
        {__LINE__, 0x0202, "\xB1\xF8", u"\u0105\u0159"},
        {__LINE__, 0x0205, "\xB0\xEF", u"\u0410\u044F"},
        {__LINE__, 0x0209, "\xDD\xFE", u"\u0130\u015F"},
        {__LINE__, 0x020F, "\xA4\xBD", u"\u20AC\u0153"},
        {__LINE__, 0x0500, "\x80\x93", u"\u20AC\u201C"},
        {__LINE__, 0x0501, "\x8C\xB9", u"\u015A\u0105"},
        {__LINE__, 0x0502, "\xC0\xFF", u"\u0410\u044F"},
        {__LINE__, 0x0503, "\xC1\xFE", u"\u0391\u03CE"},
        {__LINE__, 0x0504, "\xDD\xFE", u"\u0130\u015F"},
        {__LINE__, 0x0632, "\xD6\xD0\x94\x39\xFC\x36", u"\u4E2D\U0001F600"},
        {__LINE__, 0x0920, "\xC6\xFC\x8E\xB1", u"\u65E5\uFF71"},
        {__LINE__, 0x0940, "\xC7\xD1", u"\uD55C"},
        {__LINE__, 0x0A01, "\x93\xFA\x5C\x1A\x1C\x7F", u"\u65E5\\\u001A\u001C\u007F"},
        {__LINE__, 0x0A02, "\xC1\xE1", u"\u0430\u0410"},
        {__LINE__, 0x0A03, "\xA4\xA4", u"\u4E2D"},
        {__LINE__, 0x14000100, "\x2D\x4E", u"\u4E2D"},
        {__LINE__, 0x10000100, "\x4E\x2D", u"\u4E2D"},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        EXPECT_EQ(row.units, Units(FromBytes(row.bytes, row.number)));
        const Bytes expected{static_cast<CFIndex>(std::char_traits<char16_t>::length(row.units)),
                             row.bytes};
        EXPECT_EQ(expected, GetBytes(FromUnits(row.units), row.number, 0, 64));
    }
}

TEST_F(CoreFoundation, EveryOtherEncodingHasAConverter) {
    for (const CFStringEncoding number :
         {0x0007U, 0x001DU, 0x0023U, 0x0203U, 0x0204U, 0x0206U, 0x0207U, 0x0208U, 0x020DU, 0x0420U,
          0x0421U, 0x0422U, 0x0423U, 0x0505U, 0x0506U, 0x0507U, 0x0508U, 0x0930U, 0x0A08U}) {
        SCOPED_TRACE(number);
        EXPECT_EQ((Bytes{1, "?"}), GetBytes(FromUnits(u"\uFFFF"), number, '?', 64));
    }
}

TEST_F(CoreFoundation, BytesAreTakenStrictlyAndMarksHonouredWhenExternal) {
    using namespace std::string_view_literals;
    const struct {
        int line;
        CFStringEncoding number;
        bool external;
        std::string_view bytes;
        const char16_t* units;
    } rows[] = {
        {__LINE__, kCFStringEncodingUTF8, false, "ab\xC3", kNone},            // cut
        {__LINE__, kCFStringEncodingUTF8, false, "\xC0\xAF", kNone},          // overlong
        {__LINE__, kCFStringEncodingUTF8, false, "\xED\xA0\x80", kNone},      // a surrogate
        {__LINE__, kCFStringEncodingUTF8, false, "\xF4\x90\x80\x80", kNone},  // above U+10FFFF
        {__LINE__, kCFStringEncodingASCII, false, "a\x80", kNone},
        {__LINE__, kCFStringEncodingShiftJIS, false, "\x93", kNone},
        {__LINE__, kCFStringEncodingShiftJIS, false, "\x93\x20", kNone},
        {__LINE__, kCFStringEncodingEUC_JP, false, "\x8F\xA1", kNone},
        {__LINE__, kCFStringEncodingWindowsGreek, false, "\xD2", kNone},  // a hole in the table
        {__LINE__, kCFStringEncodingUTF16, false, "a", kNone},
        {__LINE__, kCFStringEncodingUTF16, true, "\0A\0B"sv, u"AB"},
        {__LINE__, kCFStringEncodingUTF16, true, "\xFE\xFF\0A"sv, u"A"},
        {__LINE__, kCFStringEncodingUTF16, true, "\xFF\xFE\x41\0"sv, u"A"},
        {__LINE__, kCFStringEncodingUTF16BE, true, "\xFE\xFF\0A"sv, u"\uFEFFA"},
        {__LINE__, kCFStringEncodingUTF16LE, false, "\xFF\xFE\x3D\xD8"sv, u"\uFEFF\xD83D"},
        {__LINE__, kCFStringEncodingUTF8, true, "\xEF\xBB\xBF\x41"sv, u"A"},
        {__LINE__, kCFStringEncodingUTF8, false, "\xEF\xBB\xBF\x41"sv, u"\uFEFFA"},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        EXPECT_EQ(row.units, Units(FromBytes(row.bytes, row.number, row.external)));
    }
    const Bytes marked = GetBytes(FromUnits(u"A"), kCFStringEncodingUTF16, 0, 64, true);
    EXPECT_EQ(u"A", Units(FromBytes(marked.bytes, kCFStringEncodingUTF16, true)));
}

TEST_F(CoreFoundation, LossAndRoomAreCountedInWholeCharacters) {
    const struct {
        int line;
        CFStringEncoding number;
        UInt8 lossByte;
        CFIndex room;
        const char16_t* units;
        Bytes expected;
    } rows[] = {
        {__LINE__, kCFStringEncodingISOLatin1, '?', 64, u"a\u4E2Db", {3, "a?b"}},
        {__LINE__, kCFStringEncodingWindowsLatin1, '?', 64, u"\U0001F600z", {3, "?z"}},
        {__LINE__, kCFStringEncodingEUC_KR, '?', 64, u"\u200Bz", {2, "?z"}},  // invisible
        {__LINE__, kCFStringEncodingUTF8, '?', 64, u"a\xD83Dz", {3, "a?z"}},
        {__LINE__, kCFStringEncodingGB_18030_2000, '?', 64, u"\xDE00\xD83D", {2, "??"}},
        {__LINE__, kCFStringEncodingASCII, 0, 64, u"ab\u00E9z", {2, "ab"}},
        {__LINE__, kCFStringEncodingUTF8, '?', 3, u"ab\u00E9", {2, "ab"}},
        {__LINE__, kCFStringEncodingUTF8, '?', 4, u"\U0001F600a", {2, "\xF0\x9F\x98\x80"}},
        {__LINE__, kCFStringEncodingUTF8, '?', 3, u"\U0001F600a", {0, ""}},
        {__LINE__, kCFStringEncodingShiftJIS, '?', 2, u"a\u65E5", {1, "a"}},
        {__LINE__, kCFStringEncodingShiftJIS, '?', 0, u"a", {0, ""}},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        EXPECT_EQ(row.expected, GetBytes(FromUnits(row.units), row.number, row.lossByte, row.room));
    }
    const String text = FromUnits(u"-\u65E5\u4E2D-");
    CFIndex needed = 0;
    EXPECT_EQ(2, CFStringGetBytes(text.get(), CFRangeMake(1, 2), kCFStringEncodingUTF8, '?', false,
                                  nullptr, 0, &needed));
    EXPECT_EQ(6, needed);
}

TEST_F(CoreFoundation, BorrowedUnitsAreNotCopied) {
    const UniChar units[] = {'a', 'b'};
    const String text(
        CFStringCreateWithCharactersNoCopy(kCFAllocatorDefault, units, 2, kCFAllocatorNull));
    EXPECT_EQ(units, CFStringGetCharactersPtr(text.get()));
}

TEST_F(CoreFoundation, TerminatedAndCountedTextIsWholeOrEmpty) {
    const String text = FromUnits(u"caf\u00E9");
    const std::string full(255, 'x');
    const String longest = FromBytes(full, kCFStringEncodingASCII);
    const String tooLong = FromBytes(full + "x", kCFStringEncodingASCII);
    const struct {
        int line;
        const String& string;
        CFStringEncoding number;
        CFIndex size;
        bool fitsTerminated;
        bool fitsCounted;
    } rows[] = {
        {__LINE__, text, kCFStringEncodingISOLatin1, 5, true, true},
        {__LINE__, text, kCFStringEncodingISOLatin1, 4, false, false},
        {__LINE__, text, kCFStringEncodingASCII, 64, false, false},
        {__LINE__, longest, kCFStringEncodingASCII, 256, true, true},
        {__LINE__, tooLong, kCFStringEncodingASCII, 300, true, false},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        std::vector<char> terminated(static_cast<std::size_t>(row.size), '#');
        std::vector<unsigned char> counted(static_cast<std::size_t>(row.size), '#');
        const auto length = static_cast<std::size_t>(CFStringGetLength(row.string.get()));
        EXPECT_EQ(row.fitsTerminated,
                  CFStringGetCString(row.string.get(), terminated.data(), row.size, row.number));
        EXPECT_EQ(row.fitsTerminated ? length : 0, std::string(terminated.data()).size());
        EXPECT_EQ(row.fitsCounted,
                  CFStringGetPascalString(row.string.get(), counted.data(), row.size, row.number));
        EXPECT_EQ(row.fitsCounted ? length : 0, counted[0]);
    }
    EXPECT_FALSE(CFStringGetCString(text.get(), nullptr, 0, kCFStringEncodingUTF8));
}

TEST_F(CoreFoundation, NumbersAreFormatted) {
    const String text(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%ld|%s"),
                                               std::numeric_limits<long>::min(), "\xC3\xA9"));
    EXPECT_EQ(u"-9223372036854775808|\u00E9", Units(text));
}

TEST_F(CoreFoundation, ConstantsAreSharedAndOutliveTheirReleases) {
    const CFStringRef constant = CFSTR("constant");
    CFRelease(constant);
    EXPECT_EQ(constant, CFSTR("constant"));
    EXPECT_EQ(8, CFStringGetLength(constant));
    EXPECT_EQ(CFStringGetTypeID(), CFGetTypeID(constant));
}

TEST_F(CoreFoundation, TheLocaleNamesTheSystemEncoding) {
    const struct {
        int line;
        ScopedVariables::Values variables;
        CFStringEncoding expected;
    } rows[] = {
        {__LINE__, {}, kCFStringEncodingUTF8},
        {__LINE__, {{"LANG", "C"}}, kCFStringEncodingUTF8},
        {__LINE__, {{"LANG", "de_DE"}}, kCFStringEncodingUTF8},
        {__LINE__, {{"LANG", "de_DE.unheard-of"}}, kCFStringEncodingUTF8},
        {__LINE__, {{"LANG", "de_DE.ISO-8859-15@euro"}}, kCFStringEncodingISOLatin9},
        {__LINE__, {{"LANG", "ja_JP.eucJP"}}, kCFStringEncodingEUC_JP},
        {__LINE__, {{"LANG", "ja_JP.SJIS"}}, kCFStringEncodingShiftJIS},
        {__LINE__, {{"LC_CTYPE", "ru_RU.KOI8-R"}, {"LANG", "C.UTF-8"}}, kCFStringEncodingKOI8_R},
        {__LINE__, {{"LC_ALL", "C.utf8"}, {"LC_CTYPE", "ru_RU.CP1251"}}, kCFStringEncodingUTF8},
        {__LINE__,
         {{"LC_ALL", ""}, {"LC_CTYPE", "ru_RU.CP1251"}},
         kCFStringEncodingWindowsCyrillic},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        const ScopedVariables scope(row.variables);
        EXPECT_EQ(row.expected, CFStringGetSystemEncoding());
    }
    const ScopedVariables latin(ScopedVariables::Values{{"LANG", "pl_PL.ISO-8859-2"}});
    EXPECT_EQ(u"\u0105", Units(FromBytes("\xB1", 0xDEAD)));  // an unknown number
}

TEST_F(CoreFoundation, TheEnvironmentNamesTheLanguages) {
    const struct {
        int line;
        ScopedVariables::Values variables;
        std::vector<std::string> expected;
    } rows[] = {
        {__LINE__, {}, {}},
        {__LINE__, {{"LANG", "de_DE.UTF-8"}}, {"de_DE"}},
        {__LINE__, {{"LANG", "C.UTF-8"}}, {}},
        {__LINE__, {{"LANGUAGE", ":pt_PT::de@x:C:"}, {"LANG", "fr_FR"}}, {"pt_PT", "de"}},
        {__LINE__, {{"LANGUAGE", ":"}, {"LC_MESSAGES", "fr"}, {"LANG", "en"}}, {"fr"}},
        {__LINE__, {{"LANGUAGE", ""}, {"LC_ALL", "POSIX"}, {"LANG", "en"}}, {}},
        {__LINE__, {{"LANGUAGE", "\xFF:ja"}}, {"ja"}},
    };
    const auto copy = [](CFStringRef key, CFStringRef user) {
        return CFPreferencesCopyValue(key, kCFPreferencesAnyApplication, user,
                                      kCFPreferencesAnyHost);
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        const ScopedVariables scope(row.variables);
        const auto array =
            static_cast<CFArrayRef>(copy(CFSTR("AppleLanguages"), kCFPreferencesCurrentUser));
        ASSERT_EQ(row.expected.empty(), array == nullptr);
        if (array == nullptr) continue;
        std::vector<std::string> languages;
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
            char name[32];
            EXPECT_TRUE(
                CFStringGetCString(static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, i)), name,
                                   sizeof name, kCFStringEncodingASCII));
            languages.emplace_back(name);
        }
        CFRelease(array);
        EXPECT_EQ(row.expected, languages);
    }
    const ScopedVariables german(ScopedVariables::Values{{"LANG", "de"}});
    EXPECT_EQ(nullptr, copy(CFSTR("AppleLocale"), kCFPreferencesCurrentUser));
    EXPECT_EQ(nullptr, copy(CFSTR("AppleLanguages"), kCFPreferencesAnyHost));
}

}  // namespace
