#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/CoreFoundation/CoreFoundation.h"
#include "tests/Environment.h"
#include "tests/wordlex/Settings.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/DictionaryMap.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace wordlex_tests {
namespace {

using lexon::Wordlex;

lexon::EncodingInfo utf8{1};

Wordlex Handle(std::u16string_view text) { return Wordlex(Make(text)); }

const unsigned short* DataOf(const Wordlex& handle) {
    const unsigned short* units = nullptr;
    unsigned long length = 99;
    handle.GetInternalData(&units, &length);
    EXPECT_EQ(handle.GetUnicodeSizeNoNull(), length);
    return units;
}

std::u16string TextOf(const Wordlex& handle) {
    return Text(DataOf(handle), handle.GetUnicodeSize() - 1);
}

TEST(WordlexFacade, MakesAndAssignsText) {
    const auto units = TerminatedUnits(u"xyz");
    Wordlex text(-42L);
    const auto after = [&text](auto change) {
        change();
        return TextOf(text);
    };
    EXPECT_EQ(u"-42", TextOf(text));
    EXPECT_EQ(u"xy", after([&] { text.MakeFromUnicode(units.data(), 2); }));
    EXPECT_EQ(u"y", after([&] { text.MakeFromUnicode(DataOf(text) + 1, 1); }))
        << "of its own units";
    EXPECT_EQ(u"\u00E9", after([&] { text.MakeFromCString("\xC3\xA9z", 2, &utf8); }));
    EXPECT_EQ(u"\u00E9", after([&] { text.MakeFromPascalString(Bytes("\1\xC3\xA9z"), 2, &utf8); }));
    EXPECT_EQ(u"xyz", after([&] { text.AssignUnicode(units.data()); }));
    EXPECT_EQ(u"\u00E9z", after([&] { text.AssignCString("\xC3\xA9z", &utf8); }));
    EXPECT_EQ(u"\u00E9", after([&] { text.AssignPascalString(Bytes("\2\xC3\xA9z"), &utf8); }));
    const std::string longest = '\xFF' + std::string(255, 'a');
    EXPECT_EQ(std::u16string(255, u'a'),
              after([&] { text.AssignPascalString(Bytes(longest.c_str()), &utf8); }));
}

TEST(WordlexFacade, ReadsNullAsTheEmptyTextAndSetsNoNullResult) {
    using Change = void (*)(Wordlex&);
    constexpr Change empties[] = {
        [](Wordlex& text) { text.MakeFromUnicode(nullptr, 2); },
        [](Wordlex& text) { text.MakeFromCString(nullptr, 2, &utf8); },
        [](Wordlex& text) { text.MakeFromPascalString(nullptr, 2, nullptr); },
        [](Wordlex& text) { text.AssignUnicode(nullptr); },
        [](Wordlex& text) { text.AssignCString(nullptr, nullptr); },
        [](Wordlex& text) { text.AssignPascalString(nullptr, &utf8); },
    };
    for (const Change change : empties) {
        Wordlex text = Handle(u"old");
        change(text);
        EXPECT_EQ(u"", TextOf(text)) << "row " << &change - empties;
    }
    Wordlex text = Handle(uR"(<param name=""/>)");
    EXPECT_FALSE(text.ParamSubstitute(nullptr, Wordlex(1)));
    unsigned long length = 0;
    text.GetInternalData(nullptr, &length);
    text.GetInternalData(nullptr, nullptr);
    EXPECT_EQ(16U, length);
    lexon::Dictionary().Release(nullptr);
    lexon::Dictionary compact(true);
    for (int i = 0; i < 2; ++i) {  // adds, then replaces
        EXPECT_EQ(0U, compact.Add("/A", nullptr, 3, nullptr, nullptr, 3));
        EXPECT_EQ(u"", TextOf(compact.Lookup("/A=default", nullptr)));
    }
}

// The public numbers are the platform's.
static_assert(lexon::encodings::kMacRoman == kCFStringEncodingMacRoman);
static_assert(lexon::encodings::kLatin1 == kCFStringEncodingISOLatin1);
static_assert(lexon::encodings::kLatin2 == kCFStringEncodingISOLatin2);
static_assert(lexon::encodings::kLatin9 == kCFStringEncodingISOLatin9);
static_assert(lexon::encodings::kWindowsLatin1 == kCFStringEncodingWindowsLatin1);
static_assert(lexon::encodings::kWindowsLatin2 == kCFStringEncodingWindowsLatin2);
static_assert(lexon::encodings::kWindowsCyrillic == kCFStringEncodingWindowsCyrillic);
static_assert(lexon::encodings::kAscii == kCFStringEncodingASCII);
static_assert(lexon::encodings::kShiftJis == kCFStringEncodingShiftJIS);
static_assert(lexon::encodings::kKoi8R == kCFStringEncodingKOI8_R);
static_assert(lexon::encodings::kBig5 == kCFStringEncodingBig5);
static_assert(lexon::encodings::kGb18030 == kCFStringEncodingGB_18030_2000);
static_assert(lexon::encodings::kEucKr == kCFStringEncodingEUC_KR);
static_assert(lexon::encodings::kUtf8 == kCFStringEncodingUTF8);

// Calls that look right but are wrong do not compile.
template <class Digit>
concept Replaces = requires(Wordlex text, Digit digit) {
    text.Replace(digit, text);
};
template <class Digit>
concept AsksForReplacement = requires(Wordlex text, Digit digit) {
    text.WillReplace(digit);
};
static_assert(Replaces<unsigned char> && Replaces<int> && !Replaces<char>);
static_assert(AsksForReplacement<unsigned char> && !AsksForReplacement<char>);
static_assert(!std::is_constructible_v<lexon::Dictionary, const char*>);
static_assert(std::is_nothrow_move_constructible_v<lexon::Dictionary>);

TEST(WordlexFacade, IsEmptyAfterAFailedMakeAndAsItWasAfterAFailedAssign) {
    const SettingsGuard guard;
    lexon_private::UnicodeUtil::SetConversionProcs(
        nullptr, [](auto...) -> std::int64_t { return -50; }, nullptr, nullptr);
    const auto after = [](std::int64_t code, auto change) {
        Wordlex text = Handle(u"old");
        EXPECT_EQ(code, ThrownCode([&] { change(text); }));
        return TextOf(text);
    };
    EXPECT_EQ(u"old", after(-50, [](auto& text) { text.AssignCString("a", &utf8); }));
    EXPECT_EQ(u"old", after(-50, [](auto& text) { text.AssignPascalString(Bytes("\1a"), &utf8); }));
    EXPECT_EQ(u"", after(-50, [](auto& text) { text.MakeFromCString("a", 1, &utf8); }));
    EXPECT_EQ(u"",
              after(-50, [](auto& text) { text.MakeFromPascalString(Bytes("\1a"), 1, &utf8); }));
    EXPECT_EQ(u"", after(0, [](auto& text) {
                  EXPECT_THROW(text.MakeFromUnicode(DataOf(text), ~0UL / 2), std::bad_alloc);
              }));
}

TEST(WordlexFacade, LooksKeysAndIdsUpInTheRegistry) {
    lexon_private::Dictionary& registered = *lexon_private::DictionaryMap::Instance()[41];
    registered = lexon_private::Dictionary(true);
    const unsigned short value = u'V';
    const auto id = static_cast<unsigned int>(registered.Add("/K", &value, 1, nullptr, nullptr, 0));
    EXPECT_EQ(u"V", TextOf(Wordlex("$$$/K=default", 41, nullptr)));
    EXPECT_EQ(u"default", TextOf(Wordlex("$$$/K=default", 42, nullptr))) << "another dictionary";
    EXPECT_EQ(u"V", TextOf(Wordlex(id, 41, nullptr)));
    EXPECT_EQ(u"", TextOf(Wordlex(id, 42, nullptr)));
    std::istringstream more("/L=l");
    lexon_private::Dictionary::Read(&more, 41);
    EXPECT_EQ(&registered, lexon_private::Dictionary::SetAsMain(41));
    EXPECT_EQ(u"l", TextOf(Wordlex("/L=default", 42, nullptr)));
    registered = lexon_private::Dictionary(true);
    lexon_private::Dictionary().SetAsMain();  // and destroyed again
}

TEST(WordlexFacade, CopiesOut) {
    const Wordlex text = Handle(u"x\u00E9");
    unsigned short units[3] = {};
    EXPECT_EQ(kBuff, ThrownCode([&] { text.GetUnicodeNoNull(units, 1, true); }));
    EXPECT_EQ(kBuff, ThrownCode([&] { text.GetUnicode(units, 2, true); }));
    text.GetUnicode(units, 3, true);
    EXPECT_EQ(TerminatedUnits(u"x\u00E9"), std::vector(units, units + 3));
    EXPECT_EQ(8U, text.GetCStringSize(&utf8) + text.GetPascalStringSize(&utf8));
    char bytes[4];
    text.GetCString(bytes, 4, true, &utf8);
    EXPECT_STREQ("x\xC3\xA9", bytes);
    unsigned char counted[4];
    text.GetPascalString(counted, 4, true, &utf8);
    EXPECT_EQ(3, counted[0]);
    const SettingsGuard guard;
    Wordlex::SetDefaultApplicationEncoding(0x0201);  // ISO Latin 1
    EXPECT_EQ(3U, text.GetCStringSize(nullptr));
}

TEST(WordlexFacade, ConvertsInTheEncodingOfTheEnvironmentWhereNoneIsGiven) {
    const char* const outer = std::getenv("LC_ALL");
    const std::string before = outer == nullptr ? "" : std::string("LC_ALL=") + outer;
    for (const auto& [environment, expected] :
         {std::pair("LC_ALL=de_DE.ISO-8859-1", "\xE9"), std::pair("LC_ALL=C", "\xC3\xA9"),
          std::pair("LANG=de_DE.UTF-8", "\xC3\xA9"), std::pair("LANG=el_GR.ISO-8859-7", "?")}) {
        SCOPED_TRACE(environment);
        SetEnvironment(environment);
        char bytes[4];
        Handle(u"\u00E9").GetCString(bytes, sizeof bytes, true, nullptr);
        EXPECT_STREQ(expected, bytes);
        Wordlex text;
        text.AssignCString(bytes, nullptr);
        EXPECT_EQ(*expected == '?' ? u"?" : u"\u00E9", TextOf(text));
    }
    SetEnvironment(before);
}

TEST(WordlexFacade, ForwardsChanges) {
    Wordlex text = Handle(uR"( &<param name="n"/><param name="n"/>:^1.txt...)");
    EXPECT_TRUE(text.ParamSubstitute("n", Wordlex(8), 2));
    EXPECT_TRUE(text.ParamSubstitute("n", Wordlex(7)));
    EXPECT_TRUE(text.WillReplace(1));
    text.Replace(1, Wordlex(9));
    EXPECT_EQ(u" &78:9.txt...", TextOf(text));
    text.EllipsisToHostEllipsis();
    text.TrimEllipsis();
    EXPECT_EQ(u" &78:9.txt", TextOf(text));
    EXPECT_TRUE(text.RemoveExtension());
    text.RemoveAccelerators();
    text.RemoveBadFilenameCharacters();
    text.TrimBlanks();
    EXPECT_EQ(u"78-9", TextOf(text));
    Wordlex copy;
    copy = text;
    text.Clear();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(u"78-9", TextOf(copy));
}

TEST(WordlexFacade, ForwardsQuestions) {
    const Wordlex text = Handle(u"12");
    const Wordlex same = Handle(u"12");
    const Wordlex more = Handle(u"13");
    EXPECT_TRUE(text == same && text <= same && text >= same && text < more && more > text);
    EXPECT_FALSE(text != same || text > same || text < same || more <= text || text >= more);
    EXPECT_EQ(-1, text.CompareTo(more));
    long value = 0;
    EXPECT_TRUE(text.ToInteger(value));
    EXPECT_EQ(12, value);
    EXPECT_FALSE(text.IsAllWhiteSpace() || text.IsEmpty());
    EXPECT_STREQ("5.1", WLLibraryVersion());
}

TEST(DictionaryFacade, ForwardsToItsDictionary) {
    lexon::Dictionary dictionary(true);
    const auto value = Units(u"&v");
    EXPECT_EQ(0U, dictionary.Add("/A", value.data(), 2, nullptr, value.data() + 1, 1));
    EXPECT_EQ(u"&v", TextOf(dictionary.Lookup("/A", nullptr)));
    EXPECT_EQ(u"&v", TextOf(dictionary.Lookup(0UL, nullptr)));
    EXPECT_EQ(u"v", TextOf(dictionary.Accelerator("/A", nullptr)));
    EXPECT_EQ(u"v", TextOf(dictionary.Accelerator(0U, nullptr)));
    const unsigned short* units = nullptr;
    unsigned long length = 0;
    EXPECT_TRUE(dictionary.LookupReturnUTF16Ptr("/A", units, length));
    EXPECT_TRUE(dictionary.LookupReturnUTF16Ptr(0UL, units, length));
    EXPECT_EQ(u"&v", Text(units, length));
    EXPECT_TRUE(dictionary.ValidId(0) && dictionary.HasKey("/A", nullptr));
    EXPECT_EQ(0U, dictionary.GetNumericId("/A"));
    dictionary.Locale("ja");
    EXPECT_EQ(u"ja", TextOf(dictionary.Locale()));

    EXPECT_TRUE(dictionary.ReSetKeyEnumeration() && dictionary.HasMoreKey());
    char key[3] = "";
    EXPECT_TRUE(dictionary.NextKey(key, sizeof key, true));
    char* texts[] = {dictionary.NextKey(), dictionary.GetStringId(0)};
    for (char*& text : texts) {
        EXPECT_STREQ(key, text);
        dictionary.Release(&text);
        dictionary.Release(&text);  // null by now
        EXPECT_EQ(nullptr, text);
    }

    std::stringstream file;
    EXPECT_LT(
        0U, dictionary.Serialize(file, lexon::SaveType::kBinary, nullptr, lexon::EndianT::kBig, 0));
    lexon::Dictionary read;
    read.Read(&file);
    const lexon::Dictionary copy(read);
    lexon::Dictionary assigned;
    assigned = copy;
    EXPECT_EQ(1U, assigned.NumKeys());
    EXPECT_EQ(0U, read.Remove("/A"));
    EXPECT_EQ(~0UL, read.Remove(0UL));
    EXPECT_EQ(0U, assigned.NumKeys());
    dictionary.SetAsMain();
    EXPECT_EQ(u"&v", TextOf(read.Lookup("/A=d", nullptr)));
    read.Read("/A", 0, true);
    EXPECT_FALSE(read.IsValid());
    std::ostringstream text;
    dictionary.Serialize(text, false, nullptr);
    EXPECT_EQ(18U, text.str().size());
}

// A returned text is in one allocation with its handle.
TEST(DictionaryFacade, HandsOutTextsThatOutliveTheirHandles) {
    lexon::Dictionary dictionary(true);
    dictionary.Add("held", TerminatedUnits(u"value").data(), 5, nullptr, nullptr, 0);
    const auto other = TerminatedUnits(u"other");
    for (const auto& [key, expected] : {std::pair("held", u"value"), std::pair("a=", u""),
                                        std::pair("a=x", u"x"), std::pair("a=wxyz", u"wxyz")}) {
        SCOPED_TRACE(key);
        auto first = std::make_unique<Wordlex>(dictionary.Lookup(key, nullptr));
        const Wordlex copy(*first);
        first->AssignUnicode(other.data());
        EXPECT_EQ(u"other", TextOf(*first));
        const Wordlex changed(*first);
        *first = copy;
        first.reset();
        EXPECT_EQ(expected, TextOf(copy));
        EXPECT_EQ(u"other", TextOf(changed));
    }
}

TEST(DictionaryFacade, MayBeUpdatedWhereAnEnumerationWasLeft) {
    lexon::Dictionary dictionary;
    const std::string lines = "a=1\nb=2\nc=3\n";
    for (int left = 0; left < 4; ++left) {
        for (int key = 0; key < left; ++key)
            EXPECT_TRUE(dictionary.HasMoreKey());
        dictionary.Read(lines.data(), static_cast<int>(lines.size()), true);
    }
    std::string keys;
    for (char key[2]; dictionary.HasMoreKey(); keys += key)
        EXPECT_TRUE(dictionary.NextKey(key, sizeof key, true));
    EXPECT_EQ("abc", keys);
}

TEST(DictionaryFacade, KeepsItsEntriesWhenItMoves) {
    std::vector<lexon::Dictionary> dictionaries;
    for (const char* const content : {"/K=first", "/K=second", "/K=third"}) {
        lexon::Dictionary read;
        read.Read(content, static_cast<int>(std::strlen(content)), true);
        dictionaries.push_back(std::move(read));
    }
    EXPECT_EQ(u"first", TextOf(dictionaries[0].Lookup("/K", nullptr)));
    dictionaries[0].SetAsMain();
    dictionaries[1] = std::move(dictionaries[0]);
    EXPECT_EQ(u"first", TextOf(dictionaries[1].Lookup("/K", nullptr)));
    EXPECT_EQ(u"first", TextOf(lexon::Dictionary().Lookup("/K", nullptr))) << "still the main one";
    dictionaries[0] = dictionaries[2];  // a copy of a text dictionary is empty
    EXPECT_EQ(0U, dictionaries[0].NumKeys());
}

}  // namespace
}  // namespace wordlex_tests
