#include "wordlex/functionality/DictionaryEntry.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/wordlex/Text.h"

namespace wordlex_tests {
namespace {

using lexon_private::DictionaryEntry;
using namespace std::string_literals;

void Check(std::u16string_view written, std::u16string_view stored) {
    const auto units = Units(written);
    EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequences(units.data(), units.size())), stored);
}

TEST(DictionaryEntryEscapes, BackslashAndHatTakeOneUnit) {
    Check(u"", u"");
    Check(u"plain", u"plain");
    Check(uR"(\n\r\t\b\")", u"\n\r\t\b\"");
    Check(uR"(\\)", uR"(\)");
    Check(uR"(\\n)", uR"(\n)");  // the first escape eats the second backslash
    Check(uR"(\q)", uR"(\q)");
    Check(uR"(a\)", uR"(a\)");
    Check(u"a^", u"a^");
    Check(uR"(\^C)", uR"(\^C)");  // '^' is the unit behind '\', and no escape
    Check(uR"(^\n)", uR"(^\n)");
    Check(u"^Q^[^]^{^}^C^R^T^D^B^#^!^I^S^n^r",
          u"\"\u201C\u201D\u2018\u2019\u00A9\u00AE\u2122\u00B0\u2022\u2318\u00AC\u2206\u2211\n\r");
    Check(u"^^C", u"^C");
    Check(u"^e^0^9^c", u"^e^0^9^c");
}

TEST(DictionaryEntryEscapes, EntitiesByNameAndNumber) {
    Check(u"#{amp}#{Eacute}#{eacute}#{nbsp}#{yuml}", u"&\u00C9\u00E9\u00A0\u00FF");
    Check(u"#{quot}#{euro}#{ETH}#{szlig}#{bdquo}", u"\"\u20AC\u00D0\u00DF\u201E");
    Check(u"#{U+00E9}#{u00e9}#{e9}#{E9}", u"\u00E9\u00E9\u00E9\u00E9");
    Check(u"#{a}#{ffff}", u"\n\uFFFF");
    Check(u"#{0}", u"\0"s);
    Check(u"#{tab}#{cr}#{lf}#{endl}", u"\t\r\n\r");
    Check(u"#{copyyear}", u"2019");
    Check(u"\\#{amp}^#{lt}", u"\\&\u2318{lt}");  // '^#' is an escape of its own
    Check(u"#^Q#", u"#\"#");
}

TEST(DictionaryEntryEscapes, WhatIsNoEntityStays) {
    for (const std::u16string_view text :
         {u"#", u"##", u"#{", u"#{}", u"#{a", u"#{amp", u"#{alpha}", u"#{U+1F600}", u"#{12345}",
          u"#{U+}", u"#{u}", u"#{U00E9}", u"#{AMP}", u"#{amp }", u"#{ampx}", u"#amp}", u"#{\u0141}",
          u"#{#{g}"})
        Check(text, text);
    Check(u"#{#{amp}#{g}#{9}", u"#{&#{g}\t");
}

TEST(DictionaryEntryEscapes, PlatformSectionsKeepMacos) {
    Check(u"Before#{comment}after#{macos}never", u"Before");
    Check(u"All#{mswindows}Win#{macos}Mac#{ios}Phone", u"Mac");
    Check(u"All#{mswindows}Win", u"All");
    Check(u"All#{android}x#{ios}y", u"All");
    Check(u"#{macos}Mac", u"Mac");
    Check(u"All#{macos}One#{macos}Two", u"Two");
    Check(u"A#{ios}x#y#{U+0041}#{endl}#{copyyear}#{amp}z", u"A");
    Check(u"A#{ios}x#{comment}y#{macos}Mac", u"Mac");  // no comment while skipping
    Check(u"A#{macos}M#{ios}x#{macos}N", u"M");        // the first other section ends it
}

TEST(DictionaryEntryEscapes, EntitiesAloneLeaveUnitEscapes) {
    const auto units = Units(uR"(\n^C#{amp})");
    EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequencesISO(units.data(), units.size())),
              uR"(\n^C&)");
    EXPECT_EQ(Text(DictionaryEntry::ConvertEscapeSequencesISO(RunOf(u"#{lt}"))), u"<");
}

TEST(DictionaryEntryTables, NoNameHidesALaterOne) {
    int names = 0;
    const auto* const table = lexon_private::charEntityReference();
    for (const auto* row = table; row->name != nullptr; ++row, ++names) {
        for (const auto* later = row + 1; later->name != nullptr; ++later)
            EXPECT_FALSE(
                Text(later->name, later->length).starts_with(Text(row->name, row->length)));
    }
    EXPECT_EQ(names, 138);
    const auto narrowed =
        std::unique_ptr<unsigned short[]>(lexon_private::MakeChar16(L"a\U0001F600"));
    EXPECT_EQ(Text(narrowed.get(), 3), u"a\uF600\0"s);
}

}  // namespace
}  // namespace wordlex_tests
