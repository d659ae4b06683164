// What the command knows of texts and names, apart from any file.
#include <gtest/gtest.h>

#include "tools/base/Language.h"
#include "tools/base/Suggest.h"
#include "tools/check/Accelerators.h"
#include "tools/check/Placeholders.h"
#include "tools/check/Punctuation.h"

namespace {

using tool::FromUtf8;
using tool::UnitsOf;

TEST(TextRules, LanguageComesFromLocaleNameOrFolder) {
    struct Row {
        int line;
        const char *file, *locale, *language;
    };
    const Row rows[] = {
        {__LINE__, "x/pt_BR.txt", "", "pt_BR"},
        {__LINE__, "x/pt-BR.txt", "", "pt-BR"},
        {__LINE__, "texts.de.txt", "", "de"},
        {__LINE__, "my-app_texts.zh_Hans.txt", "", "zh_Hans"},
        {__LINE__, "fr/wdictionary.dat", "", "fr"},
        {__LINE__, "fr/de.txt", "", "de"},
        {__LINE__, "fr/de.txt", "ja_JP", "ja_JP"},
        {__LINE__, "fr/texts.txt", "none", "fr"},
        {__LINE__, "fr/deep/texts.txt", "", ""},
        {__LINE__, "fil.txt", "", "fil"},
        {__LINE__, "qq.txt", "", ""},
        {__LINE__, "-", "", ""},
        {__LINE__, "dede.txt", "", ""},
        {__LINE__, "my-app.txt", "", ""},
        {__LINE__, "no-text.txt", "", ""},
        {__LINE__, "sr-Latn-RS.txt", "", "sr-Latn-RS"},
        {__LINE__, "es_419.txt", "", "es_419"},
        {__LINE__, "x.txt", "de_DE@euro", "de_DE@euro"},
        {__LINE__, "", "", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(tool::LanguageOf(row.file, row.locale), row.language) << row.line;
}

TEST(TextRules, NearestWordIsFewLettersAway) {
    const std::vector<std::string> known{"check", "compare", "compile", "stats", "update"};
    struct Row {
        const char *word, *nearest;
    };
    const Row rows[] = {{"chekc", "check"},
                        {"CHECK", "check"},
                        {"compaer", "compare"},
                        {"compie", "compile"},
                        {"comp", ""},
                        {"updte", "update"},
                        {"ud", ""},
                        {"stat", "stats"},
                        {"", ""},
                        {"statistics", ""}};
    for (const Row& row : rows)
        EXPECT_EQ(tool::Nearest(row.word, known), row.nearest) << row.word;
    EXPECT_EQ(tool::EditDistance("ab", "ba", 3), 1U);
    EXPECT_EQ(tool::EditDistance("kitten", "sitting", 5), 3U);
    EXPECT_EQ(tool::EditDistance("kitten", "sitting", 2), 2U);
}

TEST(TextRules, EndsOfTextsAreOneKindInAllScripts) {
    struct Row {
        int line;
        const char *text, *kind;
    };
    const Row rows[] = {
        {__LINE__, "", "no punctuation"},        {__LINE__, "Open", "no punctuation"},
        {__LINE__, "Open...", "an ellipsis"},    {__LINE__, "Öffnen… ", "an ellipsis"},
        {__LINE__, "打开。。。", "an ellipsis"}, {__LINE__, "No..", "a full stop"},
        {__LINE__, "「はい。」", "a full stop"}, {__LINE__, "Said “yes.”\n", "a full stop"},
        {__LINE__, "نعم؟", "a question mark"},   {__LINE__, "Γεια;", "a question mark"},
        {__LINE__, "one; two;", "a semicolon"},  {__LINE__, "開く(&O)...", "an ellipsis"},
        {__LINE__, "開く…(&O)", "an ellipsis"},  {__LINE__, "名前：", "a colon"},
        {__LINE__, "Nom\u202F:", "a colon"},     {__LINE__, "(&O)", "no punctuation"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(tool::FinalPunctuation(UnitsOf(FromUtf8(row.text))).kind, row.kind) << row.line;
    EXPECT_TRUE(tool::FinalPunctuation(UnitsOf(FromUtf8("ไทย"))).mayLackStop);
    EXPECT_EQ(tool::LineBreaks(UnitsOf(FromUtf8("\r\n\r\r\n\n"))), 4U);
    const tool::OuterBlanks blanks = tool::BlanksAround(UnitsOf(FromUtf8("  a \t\u00A0")));
    EXPECT_EQ(blanks.before, 2U);
    EXPECT_EQ(blanks.after, 3U);
    EXPECT_EQ(tool::BlanksAround(UnitsOf(FromUtf8("   "))).after, 0U);
}

// "NAME@BEGIN-END " of each.
std::string Listed(const std::vector<tool::Placeholder>& found) {
    std::string text;
    for (const tool::Placeholder& one : found)
        text += one.name + '@' + std::to_string(one.begin) + '-' + std::to_string(one.end) + ' ';
    return text;
}

TEST(TextRules, PlaceholdersStandWhereTheyStand) {
    struct Row {
        int line;
        const char *text, *foreign;
    };
    const Row rows[] = {
        {__LINE__, "%d of %1$s", "%d@0-2 %1$s@6-10 "},
        {__LINE__, "100% done, 5%d, %%d", "%d@17-19 "},
        {__LINE__, "50 % des %-5.2f%@", "%-5.2f@9-15 %@@15-17 "},
        {__LINE__, "{name} ${a} {} {a b} {x", "{name}@0-6 ${a}@7-11 "},
        {__LINE__, "a &amp; b &#39; &amp &foo; AT&T;", "&amp;@2-7 &#39;@10-15 "},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Listed(tool::ForeignPlaceholders(UnitsOf(FromUtf8(row.text)))), row.foreign)
            << row.line;
    EXPECT_EQ(Listed(tool::Markers(UnitsOf(FromUtf8("^1^^2^ ^a^0")))), "^1@0-2 ^2@3-5 ^0@9-11 ");
    EXPECT_EQ(Listed(tool::Parameters(
                  FromUtf8("<param name=\"b\"/>\"a\"< param name = \"a\" /><param name=\"b\"/>"))),
              "b@0-17 a@20-41 b@41-58 ");
    struct Marked {
        const char* text;
        std::vector<std::size_t> marks;
        bool trailing;
    };
    const Marked marked[] = {
        {"&Open && &Go", {0, 9}, false}, {"AT&T R&D", {}, false},       {"a & b &", {}, true},
        {"Go &x \b^#&G", {3}, false},    {"x?a=1&b=2 &c", {10}, false}, {"&amp; &b", {6}, false},
        {"www.a.b/&c", {}, false},       {"a&&&b", {3}, false},         {"&", {}, true},
    };
    for (const Marked& row : marked) {
        const tool::Ampersands found = tool::FindAmpersands(UnitsOf(FromUtf8(row.text)));
        EXPECT_EQ(found.marks, row.marks) << row.text;
        EXPECT_EQ(found.trailing, row.trailing) << row.text;
    }
}

}  // namespace
