#include "wordlex/functionality/DictionaryEntry.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/wordlex/Text.h"

namespace wordlex_tests {
namespace {

using lexon_private::ByteRunKey;
using lexon_private::DictionaryEntry;
using namespace std::string_literals;

struct Conversion {
    int line;
    std::u16string_view written;
    std::u16string_view stored;
};

void CheckAll(std::initializer_list<Conversion> rows) {
    for (const Conversion& row : rows) {
        SCOPED_TRACE(row.line);
        const auto units = Units(row.written);
        EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequences(units.data(), units.size())),
                  row.stored);
    }
}

TEST(DictionaryEntryEscapes, BackslashAndHatTakeOneUnit) {
    CheckAll({
        {__LINE__, u"", u""},
        {__LINE__, u"plain", u"plain"},
        {__LINE__, uR"(\n\r\t\b\")", u"\n\r\t\b\""},
        {__LINE__, uR"(\\)", uR"(\)"},
        {__LINE__, uR"(\\n)", uR"(\n)"},  // the first escape eats the second backslash
        {__LINE__, uR"(\q)", uR"(\q)"},
        {__LINE__, uR"(a\)", uR"(a\)"},
        {__LINE__, u"a^", u"a^"},
        {__LINE__, uR"(\^C)", uR"(\^C)"},  // '^' is the unit behind '\', and no escape
        {__LINE__, uR"(^\n)", uR"(^\n)"},
        {__LINE__, u"^Q^[^]^{^}^C^R^T^D^B^#^!^I^S^n^r",
         u"\"\u201C\u201D\u2018\u2019\u00A9\u00AE\u2122\u00B0\u2022\u2318\u00AC\u2206\u2211\n\r"},
        {__LINE__, u"^^C", u"^C"},
        {__LINE__, u"^e^0^9^c", u"^e^0^9^c"},
    });
}

TEST(DictionaryEntryEscapes, EntitiesByNameAndNumber) {
    CheckAll({
        {__LINE__, u"#{amp}#{Eacute}#{eacute}#{nbsp}#{yuml}", u"&\u00C9\u00E9\u00A0\u00FF"},
        {__LINE__, u"#{quot}#{euro}#{ETH}#{szlig}#{bdquo}", u"\"\u20AC\u00D0\u00DF\u201E"},
        {__LINE__, u"#{U+00E9}#{u00e9}#{e9}#{E9}", u"\u00E9\u00E9\u00E9\u00E9"},
        {__LINE__, u"#{a}#{ffff}", u"\n\uFFFF"},
        {__LINE__, u"#{0}", u"\0"s},
        {__LINE__, u"#{tab}#{cr}#{lf}#{endl}", u"\t\r\n\r"},
        {__LINE__, u"#{copyyear}", u"2019"},
        {__LINE__, uR"(\#{amp}^#{lt})",
         uR"(\&)"
         u"\u2318{lt}"},  // '^#' is an escape of its own
        {__LINE__, u"#^Q#", u"#\"#"},
    });
}

TEST(DictionaryEntryEscapes, WhatIsNoEntityStays) {
    for (const std::u16string_view text :
         {u"#", u"##", u"#{", u"#{}", u"#{a", u"#{amp", u"#{alpha}", u"#{U+1F600}", u"#{12345}",
          u"#{U+}", u"#{u}", u"#{U00E9}", u"#{AMP}", u"#{amp }", u"#{ampx}", u"#amp}", u"#{\u0141}",
          u"#{#{g}"}) {
        CheckAll({{__LINE__, text, text}});
    }
    CheckAll({{__LINE__, u"#{#{amp}", u"#{&"}, {__LINE__, u"#{g}#{9}", u"#{g}\t"}});
}

TEST(DictionaryEntryEscapes, PlatformSectionsKeepMacos) {
    CheckAll({
        {__LINE__, u"Before#{comment}after#{macos}never", u"Before"},
        {__LINE__, u"All#{mswindows}Win#{macos}Mac#{ios}Phone", u"Mac"},
        {__LINE__, u"All#{mswindows}Win", u"All"},
        {__LINE__, u"All#{android}x#{ios}y", u"All"},
        {__LINE__, u"#{macos}Mac", u"Mac"},
        {__LINE__, u"All#{macos}One#{macos}Two", u"Two"},
        {__LINE__, u"A#{ios}x#y#{U+0041}#{endl}#{copyyear}#{amp}z", u"A"},
        {__LINE__, u"A#{ios}x#{comment}y#{macos}Mac", u"Mac"},  // no comment while skipping
        {__LINE__, u"A#{macos}M#{ios}x#{macos}N", u"M"},        // the first other section ends it
    });
}

TEST(DictionaryEntryEscapes, EntitiesAloneLeaveUnitEscapes) {
    const auto units = Units(uR"(\n^C#{amp})");
    EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequencesISO(units.data(), units.size())),
              uR"(\n^C&)");
    EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequencesISO(RunOf(u"#{lt}"))), u"<");
}

TEST(DictionaryEntryTables, NamesAreAsTheHtmlStandardHasThem) {
    const auto* const table = lexon_private::charEntityReference();
    int rows = 0;
    for (; table[rows].name != nullptr; ++rows) {
        // A name that began a later one would hide it.
        for (int later = rows + 1; table[later].name != nullptr; ++later) {
            EXPECT_NE(Text(table[later].name, table[later].length)
                          .starts_with(Text(table[rows].name, table[rows].length)),
                      true)
                << rows;
        }
    }
    EXPECT_EQ(rows, 138);
    EXPECT_EQ(Text(table[10 + 96 - 1].name, 4), u"yuml");
    const auto narrowed =
        std::unique_ptr<unsigned short[]>(lexon_private::MakeChar16(L"a\U0001F600"));
    EXPECT_EQ(Text(narrowed.get(), 3), u"a\uF600\0"s);
}

TEST(DictionaryEntryEquality, IsThatOfKeys) {
    const ByteRunKey key(Bytes("/K"), 2, false);
    const auto a = Units(u"one");
    const DictionaryEntry one(key, a.data(), a.size());
    const DictionaryEntry stored(Bytes("/K"), 2, true, RunOf(uR"(\n)"));
    EXPECT_TRUE(one == stored);
    EXPECT_EQ(one.Hash(1021), stored.Hash(1021));
    EXPECT_EQ(one.Tag(), stored.Tag());
    EXPECT_EQ(Text(stored.GetValue()), uR"(\n)");
}

TEST(DictionaryEntryForms, TextBinaryAndSwapped) {
    const DictionaryEntry entry(Bytes("K\xE9"), 2, true, RunOf(u"a\"\rb\n"));
    std::ostringstream text;
    EXPECT_EQ(entry.Serialize(text, false, nullptr), 16U);  // the value's bytes, escaped
    const auto line = Units(u"\"K\u00E9=a\\\"\\rb\\n\"\n");
    EXPECT_EQ(text.str(), std::string(reinterpret_cast<const char*>(line.data()), 2 * line.size()));

    const DictionaryEntry ab(Bytes("K"), 1, true, RunOf(u"AB"));
    const lexon::EncodingInfo utf8{1};
    std::ostringstream binary;
    EXPECT_EQ(ab.Serialize(binary, true, nullptr), 5U);
    EXPECT_EQ(ab.SerializeKey(binary, true, nullptr), 1U);
    EXPECT_EQ(ab.SerializeValue(binary, true, &utf8, lexon::EndianT::kBig), 4U);
    EXPECT_EQ(ab.SerializeValue(binary, true, &utf8, lexon::EndianT::kLittle), 2U);
    EXPECT_EQ(binary.str(), "KA\0B\0K\0A\0BAB"s);
}

}  // namespace
}  // namespace wordlex_tests
