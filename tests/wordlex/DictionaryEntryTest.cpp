#include "wordlex/functionality/DictionaryEntry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "tests/wordlex/Text.h"
#include "wordlex/functionality/Dictionary.h"

namespace wordlex_tests {
namespace {

using lexon_private::DictionaryEntry;
using namespace std::string_literals;

// The stored form of each text, in rows "written→stored" with '|' between them.
void CheckAll(std::u16string_view rows) {
    while (!rows.empty()) {
        const std::u16string_view row = rows.substr(0, rows.find(u'|'));
        rows.remove_prefix(std::min(row.size() + 1, rows.size()));
        const std::size_t arrow = row.find(u'→');
        const auto units = Units(row.substr(0, arrow));
        EXPECT_EQ(row.substr(arrow + 1),
                  Text(DictionaryEntry::ConvertEscapeSequences(units.data(), units.size())));
    }
}

TEST(DictionaryEntry, ReportsTheBytesOfKeyAndValueInBinaryAndOfTheValueInText) {
    const auto units = Units(u"v\"");
    const DictionaryEntry entry(lexon_private::ByteRunKey(Bytes("key"), 3, true), units.data(), 2);
    std::ostringstream binary;
    EXPECT_EQ(3U + 4U, entry.Serialize(binary, true, nullptr));
    EXPECT_EQ(7U, binary.str().size());
    std::ostringstream text;
    EXPECT_EQ(6U, entry.Serialize(text, false, nullptr));  // with the mark's "\"
}

TEST(DictionaryEntryEscapes, BackslashAndHatTakeOneUnit) {
    CheckAll(u"→|plain→plain|\\n\\r\\t\\b\\\"→\n\r\t\b\"");
    // The first escape eats the second backslash; '^' after '\' and '\' after '^' are not escapes.
    CheckAll(uR"(\\→\|\\n→\n|\q→\q|a\→a\|a^→a^|\^C→\^C|^\n→^\n|^^C→^C|^e^0^9^c→^e^0^9^c)");
    CheckAll(
        u"^Q^[^]^{^}^C^R^T^D^B^#^!^I^S^n^r→"
        u"\"\u201C\u201D\u2018\u2019\u00A9\u00AE\u2122\u00B0\u2022\u2318\u00AC\u2206\u2211\n\r");
}

// Each way to convert, in a process of its own: the first one decides about "^e", whatever it
// converts.
TEST(DictionaryEntryEscapes, TheFirstConversionSettlesTheHats) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto convert = [](int way, std::string text) {
        lexon_private::Dictionary dictionary(way == 1);
        const std::string line = "key=" + text;
        if (way < 2) dictionary.Read(line.data(), static_cast<int>(line.size()), true);
        const auto units = Units(std::u16string(text.begin(), text.end()));
        const auto found = way == 3
                               ? DictionaryEntry::ConvertEscapeSequences(units.data(), units.size())
                               : dictionary.Lookup(way == 2 ? line.c_str() : "key", nullptr);
        return Text(found) == u"\u00E9" ? 1 : 2;
    };
    for (int way = 0; way < 4; ++way) {
        const auto exitAfter = [&](bool setFirst) {
            lexon::EnableQuorvHatEscapes = setFirst;
            convert(way, "plain");
            lexon::EnableQuorvHatEscapes = !setFirst;
            std::exit(convert((way + 1) % 4, "^e"));
        };
        EXPECT_EXIT(exitAfter(true), testing::ExitedWithCode(1), "") << way;
        EXPECT_EXIT(exitAfter(false), testing::ExitedWithCode(2), "") << way;
    }
}

TEST(DictionaryEntryEscapes, EntitiesByNameAndNumber) {
    CheckAll(
        u"#{amp}#{Eacute}#{eacute}#{nbsp}#{yuml}→&\u00C9\u00E9\u00A0\u00FF|"
        u"#{quot}#{euro}#{ETH}#{szlig}#{bdquo}→\"\u20AC\u00D0\u00DF\u201E|"
        u"#{U+00E9}#{u00e9}#{e9}#{E9}→\u00E9\u00E9\u00E9\u00E9|#{a}#{ffff}→\n\uFFFF|"
        u"#{tab}#{cr}#{lf}#{endl}→\t\r\n\r|#{copyyear}→2019|"
        u"\\#{amp}^#{lt}→\\&\u2318{lt}|#^Q#→#\"#|#{0}→\0"s);  // '^#' is an escape of its own
}

TEST(DictionaryEntryEscapes, WhatIsNoEntityStays) {
    for (const std::u16string text :
         {u"#", u"##", u"#{", u"#{}", u"#{a", u"#{amp", u"#{alpha}", u"#{U+1F600}", u"#{12345}",
          u"#{U+}", u"#{u}", u"#{U00E9}", u"#{AMP}", u"#{amp }", u"#{ampx}", u"#amp}", u"#{\u0141}",
          u"#{#{g}"})
        CheckAll(text + u'→' + text);
    CheckAll(u"#{#{amp}#{g}#{9}→#{&#{g}\t");
}

TEST(DictionaryEntryEscapes, PlatformSectionsKeepMacos) {
    CheckAll(
        u"Before#{comment}after#{macos}never→Before|All#{mswindows}Win→All|#{macos}Mac→Mac|"
        u"All#{mswindows}Win#{macos}Mac#{ios}Phone→Mac|All#{android}x#{ios}y→All|"
        u"All#{macos}One#{macos}Two→Two|A#{ios}x#y#{U+0041}#{endl}#{copyyear}#{amp}z→A");
    CheckAll(u"A#{ios}x#{comment}y#{macos}Mac→Mac");  // no comment while skipping
    CheckAll(u"A#{macos}M#{ios}x#{macos}N→M");        // the first other section ends it
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
