// Texts filled in one pass, and messages, as each language writes them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <random>
#include <span>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/MessagePattern.h"
#include "wordlex/functionality/Wordlex.h"

namespace catalog {
namespace {

using lexon::Argument;
using lexon::FormatError;
using lexon::FormatOptions;
using lexon::Formatter;
using lexon::OnMismatch;
using std::chrono::days;
using std::chrono::sys_days;
using Arguments = std::vector<Argument>;

struct Row {
    int line;
    const char* language;
    std::u16string_view text;
    Arguments arguments;
    std::u16string_view expected;
};

enum class How { kText, kMessage };
void CheckAll(How how, std::initializer_list<Row> rows, const FormatOptions& options = {}) {
    for (const Row& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, row.language);
        const Formatter formatter(row.language);
        EXPECT_EQ(row.expected, how == How::kText
                                    ? formatter.Format(row.text, row.arguments, options)
                                    : formatter.FormatMessage(row.text, row.arguments, options));
    }
}

TEST(Format, FillsEachPlaceOnce) {
    const std::u16string name = u"name";
    CheckAll(How::kText,
             {{__LINE__, "", u"", {}, u""},
              {__LINE__, "", u"^1", {}, u"^1"},
              {__LINE__, "", u"^1 of ^2", {3, 17U}, u"3 of 17"},
              {__LINE__, "", u"^1^2", {u"^2", "<param name=\"n\"/>"}, u"^2<param name=\"n\"/>"},
              {__LINE__, "", u"^^1^ ^", {"x"}, u"^x^ ^"},
              {__LINE__, "", u"^9^0^1", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, u"9101"},
              {__LINE__, "", u"^0^1", {{"0", "zero"}, "one"}, u"zeroone"},
              {__LINE__, "", u"^3", {1, 2}, u"^3"},
              {__LINE__, "", u"<param name=\"name\"/>", {{"name", name}}, u"name"},
              {__LINE__, "", u"<  paramname  =\"é\"  />", {{"é", -1}}, u"-1"},
              {__LINE__,
               "",
               u"<param name=\"a\"/><param name=\"b\"/>",
               {{"b", 2}},
               u"<param name=\"a\"/>2"},
              {__LINE__, "", u"<<param name=\"a\"/>", {{"a", 1}}, u"<<param name=\"a\"/>"},
              {__LINE__, "", u"< ^1 /><param name=\"^1\"/>", {{"^1", 1}, 2}, u"< 2 />1"},
              {__LINE__,
               "",
               u"^1|^2|^3",
               {"\xC3\xA9\xF0\x9F\x8E\xAC", "a\xFFz", static_cast<char*>(nullptr)},
               u"é🎬|a\uFFFDz|"}});
}

// Compared with the engine's replacement of one marker and one tag, for texts made of their pieces.
TEST(Format, FindsThePlacesThatTheEngineFinds) {
    constexpr std::u16string_view kPieces[] = {u"^",
                                               u"1",
                                               u"<",
                                               u"param",
                                               u"name",
                                               u"=",
                                               u"\"",
                                               u"/",
                                               u">",
                                               u" ",
                                               u"n",
                                               u"<param name=\"",
                                               u"<param name=\"n\"/>",
                                               u"x"};
    std::mt19937 random(1);
    int filled = 0;
    for (int i = 0; i < 20000; ++i) {
        std::u16string text;
        for (auto pieces = random() % 14; pieces != 0; --pieces)
            text += kPieces[random() % std::size(kPieces)];
        const std::vector<unsigned short> units(text.begin(), text.end());
        lexon_private::Wordlex tagged(units.data(), units.size());
        lexon_private::Wordlex marked(tagged);
        const unsigned short dash[] = {'-'};
        const lexon_private::Wordlex value(dash, 1);
        while (tagged.BackDoorParamSubstitute("n", value, 1))
            ++filled;
        marked.Replace(1, value);
        const Formatter formatter;
        const auto expect = [&](const lexon_private::Wordlex& expected, const Argument& argument) {
            EXPECT_EQ(std::u16string(expected.GetData(), expected.GetData() + expected.GetLength()),
                      formatter.Format(text, {argument}))
                << testing::PrintToString(text);
        };
        expect(tagged, {"n", "-"});
        expect(marked, "-");
    }
    EXPECT_LT(5000, filled);
}

TEST(Format, WritesValuesAsTheLanguageDoes) {
    setenv("TZ", "UTC", 1);
    const auto day = sys_days(days(18000));  // 14 April 2019
    CheckAll(How::kText,
             {{__LINE__, "", u"^1 ^2", {999, 1000}, u"999 1,000"},
              {__LINE__, "en", u"^1 ^2", {1234567, -1234}, u"1,234,567 -1,234"},
              {__LINE__, "de", u"^1 ^2", {1234567, 0.5}, u"1.234.567 0,5"},
              {__LINE__, "fr", u"^1", {1234567}, u"1\u202F234\u202F567"},
              {__LINE__,
               "pt_BR",
               u"^1",
               {std::uint64_t{18446744073709551615U}},
               u"18.446.744.073.709.551.615"},
              {__LINE__, "ar-EG", u"^1 ^2", {120, 1234}, u"١٢٠ ١٬٢٣٤"},
              {__LINE__, "hi-u-nu-deva", u"^1", {305}, u"३०५"},
              {__LINE__, "de", u"^1", {day}, u"14.04.2019"},
              {__LINE__, "ja", u"^1", {day}, u"2019/04/14"},
              {__LINE__, "de", u"^1", {std::chrono::year_month_day(day)}, u"14.04.2019"},
              {__LINE__,
               "en_GB",
               u"^1",
               {std::chrono::sys_seconds(day) + std::chrono::hours(9)},
               u"14 Apr 2019, 09:00"},
              {__LINE__, "xx-nowhere", u"^1", {1234}, u"1,234"}});
}

TEST(Format, IsolatesTextsOfTheOtherDirection) {
    const std::initializer_list<Row> rows = {
        {__LINE__, "en", u"By ^1", {u"فيلم"}, u"By \u2068فيلم\u2069"},
        {__LINE__, "en", u"By ^1", {u"Zoë 家族 😀"}, u"By Zoë 家族 😀"},
        {__LINE__, "ar", u"«^1»", {"Sommer"}, u"«\u2068Sommer\u2069»"},
        {__LINE__, "he", u"^1 ^2", {u"1:06:11", u"סרט"}, u"1:06:11 סרט"},
        {__LINE__, "he", u"^1", {u"סרט Sommer"}, u"\u2068סרט Sommer\u2069"},
    };
    CheckAll(How::kText, rows);
    CheckAll(How::kText, {{__LINE__, "ar", u"«^1»", {"Sommer"}, u"«Sommer»"}}, {.isolate = false});
    CheckAll(How::kMessage,
             {{__LINE__, "ar", u"{who} {who, select, a {x} other {y}}", {{"who", "a"}}, u"a x"},
              {__LINE__, "ar", u"«{0}»", {"Sommer"}, u"«\u2068Sommer\u2069»"}});
}

constexpr std::u16string_view kClips =
    u"{clips, plural, one {# clip} other {# clips}}, {tracks, plural, one {# track} other {# "
    u"tracks}}";
constexpr std::u16string_view kRussian =
    u"{clips, plural, one {# клип} few {# клипа} many {# клипов} other {# клипа}}";

TEST(FormatMessage, ChoosesTheFormsOfTheLanguage) {
    const auto day = sys_days(days(18000));
    CheckAll(How::kMessage,
             {{__LINE__, "en", kClips, {{"clips", 5}, {"tracks", 1}}, u"5 clips, 1 track"},
              {__LINE__, "ru", kRussian, {{"clips", 1}}, u"1 клип"},
              {__LINE__, "ru", kRussian, {{"clips", 3}}, u"3 клипа"},
              {__LINE__, "ru", kRussian, {{"clips", 11}}, u"11 клипов"},
              {__LINE__, "ru", kRussian, {{"clips", 1.5}}, u"1,5 клипа"},
              {__LINE__, "en", u"{0, selectordinal, one {#st} two {#nd} other {#th}}", {2}, u"2nd"},
              {__LINE__,
               "en",
               u"{0} {1, number} {2, date, medium}",
               {"a", 1234U, day},
               u"a 1,234 Apr 14, 2019"},
              {__LINE__, "en", u"it''s '{0}'", {}, u"it's {0}"},
              // what does not fit stays visible
              {__LINE__, "en", u"{a} {b}", {{"b", 1}, {"c", 2}}, u"{a} 1"},
              {__LINE__, "en", u"{clips", {{"clips", 1}}, u"{clips"},
              {__LINE__, "en", u"{0, plural, other {#}}", {"many"}, u"{0, plural, other {#}}"}});
}

TEST(Format, RefusesWhatDoesNotFitWhenAsked) {
    using Code = FormatError::Code;
    const struct {
        int line;
        How how;
        std::u16string_view text;
        Arguments arguments;
        Code code;
        const char* what;
    } rows[] = {
        {__LINE__,
         How::kText,
         u"^1 ^3",
         {1, 2},
         Code::kMissingArgument,
         "no argument is given for ^3"},
        {__LINE__,
         How::kText,
         u"<param name=\"é\"/>",
         {},
         Code::kMissingArgument,
         "no argument is given for <param name=\"é\"/>"},
        {__LINE__,
         How::kText,
         u"^1",
         {1, {"n", 2}},
         Code::kSuperfluousArgument,
         "the text has no place for argument \"n\""},
        {__LINE__,
         How::kText,
         u"^2",
         {1, 2},
         Code::kSuperfluousArgument,
         "the text has no place for argument 1"},
        {__LINE__,
         How::kMessage,
         u"{a, plural, other {{b}}}",
         {{"a", 1}},
         Code::kMissingArgument,
         "no argument is given for {b}"},
        {__LINE__,
         How::kMessage,
         u"{a}",
         {{"a", 1}, {"b", 1}},
         Code::kSuperfluousArgument,
         "the text has no place for argument \"b\""},
        {__LINE__,
         How::kMessage,
         u"{a, plural, one {#}}",
         {{"a", 1}},
         Code::kMalformedMessage,
         "the message pattern is malformed at unit 1: no \"other\" form"},
        {__LINE__,
         How::kMessage,
         u"{a, plural, other {#}}",
         {{"a", "x"}},
         Code::kWrongType,
         "an argument has another type than the message pattern shows"},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "");
        const Formatter formatter("en");
        const FormatOptions options{.onMismatch = OnMismatch::kThrow};
        try {
            row.how == How::kText ? formatter.Format(row.text, row.arguments, options)
                                  : formatter.FormatMessage(row.text, row.arguments, options);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const FormatError& error) {
            EXPECT_EQ(row.code, error.GetCode());
            EXPECT_STREQ(row.what, error.what());
        }
    }
}

TEST(Format, FillsTheTextsOfCatalogsAndChains) {
    const auto load = [](std::string_view text) {
        return lexon::Catalog::Load(std::as_bytes(std::span(text)));
    };
    const lexon::Chain chain({{"de", load("\"$$$/A=^1 von ^2\"")},
                              {"ru", load("\"B={0, plural, one {# клип} few {# клипа} "
                                          "many {# клипов} other {# клипа}}\"")}});
    EXPECT_EQ(u"1.000 von 2.000", chain.Format("$$$/A=^1 of ^2", {1000, 2000}));
    EXPECT_EQ(u"1\u00A0000 клипов", chain.FormatMessage("B", {1000}));
    EXPECT_EQ(u"1\u00A0000 ^", chain.Format("$$$C=^1 ^^", {1000}));
    EXPECT_EQ(u"1,000 von x", chain.Links()[0].catalog.Format("/A", {1000, "x"}));
    EXPECT_EQ(u"7 y",
              lexon::Catalog().FormatMessage("D={n, plural, one {x} other {# y}}", {{"n", 7}}));
}

TEST(FormatMessage, ServesThreadsAtOnce) {
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(std::async(std::launch::async, [i] {
            int right = 0;
            for (int n = 0; n < 500; ++n) {
                const Formatter formatter(n % 2 == 0 ? "sl" : "cs");
                const auto letter = static_cast<char16_t>(u'a' + n % 7);
                const auto pattern = u"{0, plural, other {" + std::u16string(1, letter) + u"#}}";
                const std::u16string expected{letter, static_cast<char16_t>(u'0' + i)};
                right += formatter.FormatMessage(pattern, {i}) == expected;
                right += formatter.Format(u"^1", {sys_days(days(i))}).size() > 5;
            }
            return right;
        }));
    }
    for (auto& thread : threads)
        EXPECT_EQ(1000, thread.get());
}

TEST(MessageShape, NamesPlacesAndFaults) {
    const auto shape = lexon::detail::ParseMessage(
        u"{n, plural, =0 {no} one {{who}} other {{when, date, short}}}");
    ASSERT_FALSE(shape.fault);
    ASSERT_EQ(3U, shape.places.size());
    EXPECT_EQ(u"plural", shape.places[0].type);
    EXPECT_EQ((std::vector<std::u16string>{u"=0", u"one", u"other"}), shape.places[0].selectors);
    EXPECT_EQ(u"who", shape.places[1].name);
    EXPECT_EQ(26U, shape.places[1].position);
    EXPECT_EQ(u"date", shape.places[2].type);

    const struct {
        std::u16string_view pattern;
        std::size_t position;
    } faults[] = {{u"ab {x, plural, one {}}", 3},
                  {u"{a} {b", 4},
                  {u"{a, nonsense }} {", 16},
                  {u"{n, plural, other {{m, nonsense}}}", 23},
                  {u"{n, number, ::nonsense}", 4}};
    for (const auto& row : faults) {
        const auto faulty = lexon::detail::ParseMessage(row.pattern);
        ASSERT_TRUE(faulty.fault);
        EXPECT_EQ(row.position, faulty.fault->position) << faulty.fault->reason;
    }
    const auto names = [](const char* language, bool ordinal) {
        std::string list;
        for (const auto& category : lexon::detail::PluralCategories(language, ordinal))
            list +=
                category.name + (category.only ? '=' + std::to_string(*category.only) : "") + ' ';
        return list;
    };
    EXPECT_EQ("zero=0 one=1 two=2 few many other ", names("ar", false));
    EXPECT_EQ("one few many other ", names("ru", false));
    EXPECT_EQ("one two few other ", names("en_GB", true));
    EXPECT_EQ("", names("texts", false));
}

}  // namespace
}  // namespace catalog
