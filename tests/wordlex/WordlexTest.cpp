#include "wordlex/functionality/Wordlex.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <utility>

#include "tests/wordlex/Settings.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_literals;

const lexon::EncodingInfo kUtf8{1};

// Made before the library's own initializers run.
const std::u16string kMadeByAStaticInitializer = [] {
    Wordlex text = Make(uR"(<param name="x"/>!)");
    text.BackDoorParamSubstitute("x", Wordlex(7), 1);
    return Text(text);
}();

TEST(Wordlex, IsReadyForOtherStaticInitializers) {
    EXPECT_EQ(u"7!", kMadeByAStaticInitializer);
    EXPECT_EQ(u"param", Text(wStrParam()));
    EXPECT_EQ(u"name", Text(wStrName()));
}

TEST(Wordlex, MakesAndAssignsText) {
    EXPECT_EQ(u"0", Text(Wordlex(0L)));
    EXPECT_EQ(u"9223372036854775807", Text(Wordlex(LONG_MAX)));
    EXPECT_EQ(u"-9223372036854775808", Text(Wordlex(LONG_MIN)));
    EXPECT_EQ(u"\u00E9b", Text(Wordlex(Bytes("\xC3\xA9"
                                             "b"),
                                       3, &kUtf8)));
    EXPECT_EQ(u"a\0b"s, Text(Wordlex::BackDoorMakeFromCString("a\0b", 3, &kUtf8)));
    EXPECT_EQ(u"", Text(Wordlex::BackDoorMakeFromCString("a\xE9", 2, &kUtf8))) << "no valid text";
    EXPECT_EQ(u"", Text(Wordlex::BackDoorMakeFromCString(nullptr, 0, nullptr)));
    EXPECT_EQ(u"xy\0z"s, Text(Wordlex::BackDoorMakeFromUnicode(Units(u"xy\0z"s).data(), 4)));
    Wordlex text;
    text.BackDoorAssignUnicode(Units(u"xy\0z\0"s).data());
    EXPECT_EQ(u"xy", Text(text));
    text.BackDoorAssignCString("\xC3\xA9\0z", &kUtf8);
    EXPECT_EQ(u"\u00E9", Text(text));
}

TEST(Wordlex, IsAsItWasAfterAFailedConversion) {
    const SettingsGuard guard;
    const auto fails = [](auto...) -> std::int64_t { return -50; };
    UnicodeUtil::SetConversionProcs(nullptr, fails, fails, fails);
    Wordlex text = Make(uR"(<param name="n"/>)");
    const unsigned short* const units = text.GetData();
    char room[9];
    EXPECT_EQ(-50, ThrownCode([&] { text.BackDoorAssignCString("a", nullptr); }));
    EXPECT_EQ(-50, ThrownCode([&] { text.BackDoorAssignPascalString(Bytes("\1a"), nullptr); }));
    EXPECT_EQ(-50, ThrownCode([&] { text.BackDoorParamSubstitute("n", text, 1); }));
    EXPECT_FALSE(text.BackDoorParamSubstitute("n", text, 0)) << "decided before the name is read";
    EXPECT_EQ(-50, ThrownCode([&] { text.BackDoorGetCStringSize(nullptr); }));
    EXPECT_EQ(-50, ThrownCode([&] { text.BackDoorGetCString(room, 9, false, nullptr); }));
    EXPECT_EQ(units, text.GetData());
}

// Calls `copyOut(destination, capacity, throwIfTooSmall)` with destinations of exact sizes. Each
// string is one of them afterwards, whole, with '#' for units that were not written. Those before
// `firstWhole` were too small, and raise 'BUFF' on request.
template <class Unit, class CopyOut>
void CheckCopyOut(const std::vector<std::u16string>& destinations, int firstWhole,
                  CopyOut copyOut) {
    for (const bool throwIfTooSmall : {false, true}) {
        const auto code = [=](bool tooSmall) { return tooSmall && throwIfTooSmall ? kBuff : 0; };
        int row = 0;
        for (const std::u16string& expected : destinations) {
            const std::unique_ptr<Unit[]> room(new Unit[expected.size()]);
            std::fill_n(room.get(), expected.size(), static_cast<Unit>('#'));
            EXPECT_EQ(code(row++ < firstWhole),
                      ThrownCode([&] { copyOut(room.get(), expected.size(), throwIfTooSmall); }))
                << row;
            EXPECT_EQ(std::vector<Unit>(expected.begin(), expected.end()),
                      std::vector<Unit>(room.get(), room.get() + expected.size()));
        }
        EXPECT_EQ(code(true), ThrownCode([&] { copyOut(nullptr, 0UL, throwIfTooSmall); }));
        EXPECT_EQ(code(true), ThrownCode([&] { copyOut(nullptr, 9UL, throwIfTooSmall); }));
    }
}

TEST(WordlexCopyOut, GivesUnits) {
    const Wordlex text = Make(u"xyz");
    EXPECT_EQ(4U, text.BackDoorGetUnicodeSize());
    CheckCopyOut<unsigned short>({u"", u"\0"s, u"xy\0"s, u"xyz\0"s, u"xyz\0#"s}, 3,
                                 [&](auto... to) { text.BackDoorGetUnicode(to...); });
    EXPECT_EQ(3U, text.BackDoorGetUnicodeSizeNoNull());
    CheckCopyOut<unsigned short>({u"", u"x", u"xy", u"xyz", u"xyz#"}, 3,
                                 [&](auto... to) { text.BackDoorGetUnicodeNoNull(to...); });
}

TEST(WordlexCopyOut, CutsEightBitTextSilentlyAtAWholeCharacter) {
    const Wordlex text = Make(u"x\u00E9");
    EXPECT_EQ(4U, text.BackDoorGetCStringSize(&kUtf8));
    CheckCopyOut<char>({u"", u"\0"s, u"x\0#"s, u"x\u00C3\u00A9\0"s, u"x\u00C3\u00A9\0#"s}, 0,
                       [&](auto... to) { text.BackDoorGetCString(to..., &kUtf8); });
    EXPECT_EQ(4U, text.BackDoorGetPascalStringSize(&kUtf8));
    CheckCopyOut<unsigned char>({u"", u"\0"s, u"\1x#", u"\3x\u00C3\u00A9", u"\3x\u00C3\u00A9#"}, 0,
                                [&](auto... to) { text.BackDoorGetPascalString(to..., &kUtf8); });
    CheckCopyOut<unsigned char>({u"\u00FF" + std::u16string(255, u'a')}, 0, [](auto... to) {
        Make(std::u16string(300, u'a')).BackDoorGetPascalString(to..., &kUtf8);
    });
}

// The sign of the order; the six operators and CompareTo must agree.
int OrderOf(const Wordlex& a, const Wordlex& b) {
    const int order = a.CompareTo(b);
    EXPECT_EQ(order == 0, a == b);
    EXPECT_EQ(order != 0, a != b);
    EXPECT_EQ(order < 0, a < b);
    EXPECT_EQ(order <= 0, a <= b);
    EXPECT_EQ(order > 0, a > b);
    EXPECT_EQ(order >= 0, a >= b);
    return (order > 0) - (order < 0);
}

TEST(Wordlex, ComparesTextsUnlessTheyShareTheirValue) {
    EXPECT_EQ(0, OrderOf(Make(u"abc"), Make(u"abc")));
    EXPECT_EQ(-1, OrderOf(Make(u"ab"), Make(u"abc")));
    EXPECT_EQ(1, OrderOf(Make(u"b"), Make(u"abc")));
    const SettingsGuard guard;
    UnicodeUtil::SetCompareProc([](auto...) { return -3; });
    const Wordlex text = Make(u"abc");
    EXPECT_EQ(-1, OrderOf(text, Make(u"abc")));
    EXPECT_EQ(0, OrderOf(text, Wordlex(text)));
    Wordlex trimmed = Make(u"  ");
    trimmed.TrimBlanks();
    EXPECT_EQ(0, OrderOf(trimmed, Wordlex())) << "all empty strings share one value";
}

TEST(Wordlex, KnowsWhiteSpace) {
    EXPECT_TRUE(Make(u"").IsAllWhiteSpace() && Make(u" \t\u3000").IsAllWhiteSpace());
    EXPECT_FALSE(Make(u" x ").IsAllWhiteSpace());
}

// The result of `operation` for each text, in rows "before→after" with '|' between them. Other
// holders of the text keep it, and a text that does not change keeps its value object.
template <class Operation>
void CheckAll(std::u16string_view rows, Operation operation) {
    while (!rows.empty()) {
        const std::u16string before(rows.substr(0, rows.find(u'→')));
        const std::u16string_view row = rows.substr(0, rows.find(u'|'));
        rows.remove_prefix(std::min(row.size() + 1, rows.size()));
        Wordlex text = Make(before);
        const Wordlex holder = text;
        operation(text);
        EXPECT_EQ(row.substr(before.size() + 1), Text(text));
        EXPECT_EQ(before, Text(holder));
        EXPECT_EQ(before == Text(text), text.GetData() == holder.GetData()) << before.size();
    }
}

TEST(WordlexMarkers, AreCountedWhereAHatStandsDirectlyBefore) {
    const std::pair<std::u16string_view, unsigned> rows[] = {{u"", 0},    {u"^", 0},   {u"x^", 0},
                                                             {u"1^", 0},  {u"x^1", 1}, {u"^1^1", 2},
                                                             {u"^^1", 1}, {u"^ 1", 0}};
    for (const auto& [text, count] : rows) {
        EXPECT_EQ(count, Make(text).CountHatOccurrences(u'1'));
        EXPECT_EQ(count != 0, Make(text).WillReplace(1));
    }
    EXPECT_EQ(0x012F, Wordlex::DigitCharacter(255));
}

TEST(WordlexMarkers, AreReplacedInOnePass) {
    const auto replaceBy = [](std::u16string_view value) {
        return [value](Wordlex& text) { text.Replace(1, Make(value)); };
    };
    CheckAll(u"a^1b^1→aXbX|^^1→^X|^1^→X^|^1^^→X^^|^^^1^2^a1→^^X^2^a1|^2→^2|^→^|1→1|→",
             replaceBy(u"X"));
    CheckAll(u"^1^1→^1^1^1^1|^^1→^^1^1", replaceBy(u"^1^1"));
    CheckAll(u"a^1b→ab|^1→", replaceBy(u""));
    CheckAll(u"a^1b^1→aa^1b^1ba^1b^1", [](Wordlex& text) { text.Replace(1, text); });
    // The digit character is the hat itself: pairs do not overlap.
    CheckAll(u"^^→X|^^^→X^|^^^^a^→XXa^",
             [](Wordlex& text) { text.Replace(u'^' - u'0', Make(u"X")); });
}

TEST(WordlexMarkers, AreAllReplacedHoweverMany) {
    std::u16string markers;
    std::u16string values;
    for (int i = 0; i < 70000; ++i) {
        markers += u"^1";
        values += u"xyz";
    }
    EXPECT_EQ(65535, Make(markers).CountHatOccurrences(u'1'));
    CheckAll(markers + u"→" + values, [](Wordlex& text) { text.Replace(1, Make(u"xyz")); });
}

auto Substitute(const char* name, int occurrence) {
    return [=](Wordlex& text) {
        const unsigned short* const units = text.GetData();
        const bool replaced = text.BackDoorParamSubstitute(name, Make(u"3"), occurrence);
        EXPECT_EQ(replaced, units != text.GetData());
    };
}

TEST(WordlexParamTag, IsReplaced) {
    CheckAll(
        uR"(You have <param name="n"/> items→You have 3 items|)"
        uR"(<  param  name  =  "n"  />→3|<paramname="n"/>→3|<x<param name="n"/>→<x3|)"
        uR"(<param name="m"/><param name="n"/>→<param name="m"/>3)",
        Substitute("n", 1));
    CheckAll(uR"(<param name=""/>→3)", Substitute("", 1));
    CheckAll(uR"(<param name="a b"/>→3)", Substitute("a b", 1));
    const SettingsGuard guard;
    Wordlex::SetDefaultApplicationEncoding(lexon::encodings::kLatin1);  // that of the name
    CheckAll(uR"(<param name="é"/>→3)", Substitute("\xE9", 1));
    CheckAll(uR"(a<param name="n"/>b→aa<param name="n"/>bb)",
             [](Wordlex& text) { EXPECT_TRUE(text.BackDoorParamSubstitute("n", text, 1)); });
}

TEST(WordlexParamTag, IsNotSeenWhereAnyUnitIsWrong) {
    const std::u16string tag = uR"(<param name="n"/>)";
    std::vector<std::u16string> texts = {
        uR"(<param name="N"/>)", uR"(<param name="nn"/>)", uR"(<param name=" n"/>)",
        uR"(<param name="n/>)",  uR"(<param name="n"/ >)", uR"(<param name="n">)",
        u"<param\tname=\"n\"/>", uR"(<param nam="n"/>)",   uR"(<param name "n"/>)",
        uR"(<Param name="n"/>)", uR"(<<param name="n"/>)", uR"(<param <param name="n"/>)"};
    for (std::size_t i = 0; i < tag.size(); ++i) {
        texts.push_back(tag.substr(0, i));
        texts.push_back(tag.substr(i + 1));
    }
    for (const std::u16string& text : texts)
        CheckAll(text + u"→" + text, Substitute("n", 1));
}

TEST(WordlexParamTag, IsCountedByName) {
    const std::u16string tags = uR"(<param name="n"/><param name="m"/><param name = "n" />.)";
    for (const int none : {-1, 0, 3})
        CheckAll(tags + u"→" + tags, Substitute("n", none));
    CheckAll(tags + uR"(→3<param name="m"/><param name = "n" />.)", Substitute("n", 1));
    CheckAll(tags + uR"(→<param name="n"/><param name="m"/>3.)", Substitute("n", 2));
    const SettingsGuard guard;
    UnicodeUtil::SetCompareProc(
        [](auto, unsigned long a, auto, unsigned long b) { return a != b ? 1 : 0; });
    CheckAll(uR"(<PARAM NAME="N"/>→3)", Substitute("n", 1));
}

TEST(Wordlex, RemovesAccelerators) {
    CheckAll(
        u"&Open→Open|A&&B→A&B|&&&A→&A|Fish & Chips→Fish & Chips|Plain→Plain|→|"
        u"Open(&O)→Open|Open(&O)...→Open...|(&A)(&B)(&&)x→x|(&A→(A|(&)→()|&(&F)&x→&x|"
        u"last&→last|& →& |A&\tB→A\tB|A&\u0001B→A\u0001B|&Save \bCtrl+S→Save|Save "
        u"\bCtrl→Save|Save\b &x→Save\b x|"
        u"Save& \bx→Save|Save(&S) \b &x \by→Save|(&S \b)→(S|(& \b)→(| \b→",
        [](Wordlex& text) { text.RemoveAccelerators(); });
}

TEST(Wordlex, Trims) {
    CheckAll(u"  a b →a b| a→a|a →a|   →|\t a \t→\t a \t|→",
             [](Wordlex& text) { text.TrimBlanks(); });
    CheckAll(
        u"Save...→Save|Save\u2026→Save|Save\u2026\u2026→Save\u2026|Save....→Save.|"
        u"...\u2026→...|...→|..→..|... →... |→",
        [](Wordlex& text) { text.TrimEllipsis(); });
    CheckAll(u"Save...\u2026→Save...\u2026", [](Wordlex& text) { text.EllipsisToHostEllipsis(); });
}

TEST(Wordlex, ChangesLineEndsAndFileNames) {
    CheckAll(u"\na\r\n→\ra\r\r|a\r→a\r", [](Wordlex& text) { text.ChangeNewLineCharacter(); });
    CheckAll(u":a:/b→-a-/b|a/b→a/b", [](Wordlex& text) { text.RemoveBadFilenameCharacters(); });
    CheckAll(u"name.tar.gz→name.tar|a.b/README→a|.profile→|name.→name|README→README|→",
             [](Wordlex& text) {
                 const bool hasDot = Text(text).find(u'.') != std::u16string::npos;
                 EXPECT_EQ(hasDot, text.RemoveExtension());
             });
}

}  // namespace
}  // namespace wordlex_tests
