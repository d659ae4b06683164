#include <gtest/gtest.h>

#include <climits>
#include <sstream>

#include "tests/wordlex/Settings.h"
#include "wordlex/functionality/Buffer.h"
#include "wordlex/functionality/UnicodeChar.h"
#include "wordlex/platform/UnicodeConversion.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_view_literals;

constexpr unsigned int kLatin1 = 0x0201;  // a platform encoding number

std::u16string AllOf(bool (*isMember)(unsigned short)) {
    std::u16string members;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        if (isMember(static_cast<unsigned short>(unit))) members += static_cast<char16_t>(unit);
    }
    return members;
}

TEST(UnicodeChar, KnowsDigitsSignsAndSpaces) {
    std::u16string digits = u"\u00B2\u00B3\u00B9";
    for (const char16_t zero :
         u"0\u0660\u06F0\u0966\u09E6\u0A66\u0AE6\u0B66\u0BE6\u0C66\u0CE6"
         u"\u0D66\u0E50\u0ED0\u0F20\u2070\u2080\uFF10"sv) {
        for (int i = 0; i < 10; ++i) {
            const auto unit = static_cast<char16_t>(zero + i);
            const bool isGap = unit == 0x0BE6 || (unit >= 0x2071 && unit <= 0x2073);
            EXPECT_EQ(isGap ? -1 : i, UnicodeChar::GetDecimalDigit(unit)) << int{unit};
            if (isGap) continue;
            digits.insert(zero == u'0' ? digits.size() - 3 : digits.size(), 1, unit);
        }
    }
    EXPECT_EQ(digits,
              AllOf([](unsigned short unit) { return UnicodeChar::GetDecimalDigit(unit) >= 0; }));
    for (const auto& [unit, value] : {std::pair(0xB2, 2), {0xB3, 3}, {0xB9, 1}})
        EXPECT_EQ(value, UnicodeChar::GetDecimalDigit(static_cast<unsigned short>(unit)));
    EXPECT_EQ(u"-\u207B\u208B\u2212\uFE63\uFF0D", AllOf(UnicodeChar::IsMinusSign));
    EXPECT_EQ(u"+\u207A\u208A\uFE62\uFF0B", AllOf(UnicodeChar::IsPlusSign));
    EXPECT_EQ(
        u"\t\n\v\f\r \u00A0\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
        u"\u200B\u2028\u2029\u3000\uFEFF",
        AllOf(UnicodeChar::IsWhiteSpace));
    EXPECT_EQ(0x3412, UnicodeChar::ByteSwap(0x1234));
}

TEST(UnicodeRun, IsEqualOnlyToWhatSharesItsValue) {
    const UnicodeRun text = RunOf(u"text");
    UnicodeRun cleared = text;
    EXPECT_TRUE(text == cleared);
    EXPECT_TRUE(text != RunOf(u"text"));
    cleared.Clear();
    const unsigned short unread = 0;
    for (const UnicodeRun& empty : {UnicodeRun(), cleared, UnicodeRun(&unread, 0)}) {
        EXPECT_TRUE(empty == UnicodeRun::EmptyRunInstance());
        EXPECT_TRUE(empty.IsEmpty() && empty.GetData() == nullptr);
        empty.Validate();
    }
}

TEST(UnicodeRun, WritesItselfInThreeForms) {
    const auto written = [](std::u16string_view text, bool binary, bool asUtf8, unsigned result) {
        const lexon::EncodingInfo utf8{1};
        std::ostringstream out;
        EXPECT_EQ(result, RunOf(text).Serialize(out, binary, asUtf8 ? &utf8 : nullptr));
        return out.str();
    };
    const auto bytesOf = [](std::u16string_view text) {
        return std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
    };
    EXPECT_EQ(bytesOf(u"x\\\"y\\nz\"\n"), written(u"x\"y\nz", false, false, 14));
    EXPECT_EQ(bytesOf(u"a\\r\\b\"\n"), written(u"a\r\\b", false, true, 10));
    EXPECT_EQ(bytesOf(u"\"\n"), written(u"", false, false, 0));
    EXPECT_EQ(bytesOf(u"x\"\n\u00E9"), written(u"x\"\n\u00E9", true, false, 8));
    EXPECT_EQ("\"\xC3\xA9\n", written(u"\"\u00E9\n", true, true, 4));
    EXPECT_EQ("", written(u"", true, true, 0) + written(u"", true, false, 0));
}

TEST(UnicodeUtil, ComparesByDifference) {
    const auto compare = [](std::u16string_view first, std::u16string_view second) {
        return Make(first).CompareTo(Make(second));
    };
    EXPECT_EQ(-1, compare(u"ab", u"abc"));
    EXPECT_EQ(2, compare(u"abc", u"a"));
    EXPECT_EQ(-25, compare(u"a", u"z"));
    EXPECT_EQ(0xFFFE, compare(u"\uFFFF", u"\u0001xx"));
    EXPECT_EQ(0, compare(u"", u"") + compare(u"a", u"a"));
}

TEST(UnicodeUtil, ReadsIntegers) {
    const auto check = [](std::u16string_view text, bool onlyDigits, long expected) {
        long value = 99;
        EXPECT_EQ(onlyDigits, Make(text).ToInteger(value)) << expected;
        EXPECT_EQ(expected, value);
    };
    check(u"", false, 0);
    check(u"-", true, 0);
    check(u"-12", true, -12);
    check(u"+7", true, 7);
    check(u"1a2", false, 12);
    check(u"1-2", false, 12);
    check(u"--2", false, -2);
    check(u"\u22125", false, 5);
    check(u"\u0664\u0662", true, 42);
    check(u"9223372036854775807", true, LONG_MAX);
    check(u"9223372036854775809", true, LONG_MIN + 1);
}

TEST(UnicodeUtil, TakesProceduresAndItsDefaultsBack) {
    const SettingsGuard guard;
    const CompareProc backwards = [](const unsigned short*, unsigned long a, const unsigned short*,
                                     unsigned long b) { return static_cast<int>(b - a); };
    EXPECT_EQ(backwards, UnicodeUtil::SetCompareProc(backwards));
    EXPECT_EQ(7, UnicodeUtil::Compare(nullptr, 1, nullptr, 8));
    EXPECT_EQ(&UnicodeUtil::DefaultCompareProc, UnicodeUtil::SetCompareProc(nullptr));

    const auto fails = [](auto... arguments) -> std::int64_t { return sizeof...(arguments); };
    Buffer<unsigned short> units(0);
    char byte = 0;
    EXPECT_TRUE(UnicodeUtil::UsingDefaultConverters());
    UnicodeUtil::SetConversionProcs(fails, nullptr, fails, nullptr);
    EXPECT_FALSE(UnicodeUtil::UsingDefaultConverters());
    EXPECT_EQ(4, ThrownCode([] { UnicodeUtil::ToUnicodeSize(nullptr, 0, nullptr); }));
    EXPECT_EQ(4, ThrownCode([] { UnicodeUtil::FromUnicodeSize(nullptr, 0, nullptr); }));
    UnicodeUtil::SetConversionProcs(nullptr, fails, nullptr, fails);
    EXPECT_FALSE(UnicodeUtil::UsingDefaultConverters());
    EXPECT_EQ(5, ThrownCode([&] { UnicodeUtil::StringToUnicode(Bytes("ab"), 2, units, nullptr); }));
    EXPECT_EQ(2U, units.GetLength()) << "set before the status is looked at";
    EXPECT_EQ(6, ThrownCode([&] { UnicodeUtil::UnicodeToCString(nullptr, 0, &byte, 1, nullptr); }));
    UnicodeUtil::SetConversionProcs(nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(UnicodeUtil::UsingDefaultConverters());
}

TEST(UnicodeConversion, ConvertsWhatIsTextAndFits) {
    EncodingInfo utf8{1};
    const unsigned char* const text = Bytes("\xC3\xA9x");
    unsigned short units[2] = {7, 7};
    EXPECT_EQ(2U, UnicodeUtil::ToUnicodeSize(text, 3, &utf8));
    EXPECT_EQ(0U, UnicodeUtil::ToUnicodeSize(text + 1, 2, &utf8)) << "no valid text";
    EXPECT_EQ(0, UnicodeConversion::ConvertToUnicode(text + 1, 2, units, 2, &utf8));
    EXPECT_EQ(kParm, UnicodeConversion::ConvertToUnicode(text, 3, units, 1, &utf8));
    EXPECT_EQ(7, units[0]) << "a destination too small stays as it was";
    EXPECT_EQ(0, UnicodeConversion::ConvertToUnicode(text, 3, units, 2, &utf8));
    EXPECT_EQ(u"\u00E9x", Text(units, 2));

    const SettingsGuard guard;
    Wordlex::SetDefaultApplicationEncoding(kLatin1);
    EXPECT_EQ(3U, UnicodeUtil::ToUnicodeSize(text, 3, nullptr)) << "the application's default";
    UnicodeUtil::SetDefaultEncoding(&utf8);
    EXPECT_EQ(2U, UnicodeUtil::ToUnicodeSize(text, 3, nullptr)) << "the library's goes first";
    UnicodeUtil::SetDefaultEncoding(nullptr);
    const std::vector<unsigned short> foreign = Units(u"\u4E2D\u00E9");
    EXPECT_EQ(3U, UnicodeUtil::FromUnicodeSize(foreign.data(), 2, nullptr));
    char bytes[2] = {};
    unsigned long count = 9;
    EXPECT_EQ(0, UnicodeConversion::ConvertFromUnicode(nullptr, 0, bytes, 2, count, nullptr));
    EXPECT_EQ(0U, count);
    EXPECT_EQ(0,
              UnicodeConversion::ConvertFromUnicode(foreign.data(), 2, bytes, 2, count, nullptr));
    EXPECT_EQ("?\xE9", std::string(bytes, count));
}

TEST(ASErrException, NamesItsCode) {
    EXPECT_STREQ("Wordlex error 'BUFF'", lexon::ASErrException(kBuff).what());
    EXPECT_STREQ("Wordlex error -50", lexon::ASErrException(-50).what());
}

}  // namespace
}  // namespace wordlex_tests
