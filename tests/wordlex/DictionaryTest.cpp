#include "wordlex/functionality/Dictionary.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <sstream>

#include "tests/wordlex/Dictionaries.h"
#include "tests/wordlex/Settings.h"
#include "wordlex/functionality/DictionaryMap.h"

namespace wordlex_tests {
namespace {

using lexon_private::Dictionary;
using lexon_private::DictionaryMap;
using namespace std::string_literals;

constexpr unsigned long kNone = ~0UL;

std::unique_ptr<Dictionary> FromText(std::u16string_view lines, bool compact = false) {
    auto dictionary = std::make_unique<Dictionary>(compact);
    const auto units = Units(u"\uFEFF" + std::u16string(lines));
    Load(*dictionary, {reinterpret_cast<const char*>(units.data()), 2 * units.size()});
    return dictionary;
}

std::u16string Lookup(Dictionary& dictionary, const char* key) {
    return Text(dictionary.Lookup(key, nullptr));
}

std::set<std::string> Keys(Dictionary& dictionary) {
    std::set<std::string> keys;
    while (dictionary.HasMoreKey()) {
        char key[300] = "untouched";
        EXPECT_TRUE(dictionary.NextKey(key, sizeof key, true));
        // The first position of a pass is not tested: it may be an id that was removed.
        if (key == "untouched"s) continue;
        EXPECT_TRUE(keys.insert(key).second) << key << " comes twice";
    }
    return keys;
}

TEST(DictionaryText, LinesBecomeEntriesInBothStores) {
    const auto check = [](std::u16string_view text, const std::string& key,
                          std::u16string_view value) {
        for (const bool compact : {false, true}) {
            const auto dictionary = FromText(text, compact);
            EXPECT_TRUE(dictionary->IsValid());
            EXPECT_EQ(dictionary->NumKeys(), 1U);
            // In the compact store the id of the empty key is not valid, and so has no texts.
            const bool hidden = compact && key.empty();
            EXPECT_TRUE(hidden || Keys(*dictionary) == std::set<std::string>{key}) << key;
            if (key.find('=') != std::string::npos) continue;  // no look-up can name it
            EXPECT_EQ(Lookup(*dictionary, ("$$$" + key + "=d").c_str()), hidden ? u"" : value);
        }
    };
    check(u"\"$$$/Menu/Open=Open...\"", "/Menu/Open", u"Open...");
    check(uR"("$$$/T=Say \"hello\"")", "/T", u"Say \"hello\"");
    check(u"# x \"$$$/Label=Name:\" y", "/Label", u"Name:");
    check(u"\"$$$/Year=^C #{copyyear}\"", "/Year", u"\u00A9 2019");
    check(u"\"$$$/Empty=\"", "/Empty", u"");
    check(u"\"$$$/NoValue\"", "/NoValue", u"");
    check(u"\"Plain=text\"", "Plain", u"text");
    check(u"Plain2=text with no marks", "Plain2", u"text with no marks");
    check(u"\"open=to the end", "open", u"to the end");
    check(u"\"k=a=b\"", "k", u"a=b");
    check(u"\" k =  v \"", " k ", u"  v ");
    check(u"\"\u0141=x\"", "A", u"x");
    check(u"\"a\u013Db\"", "a=b", u"");  // split before it is narrowed: no "="
    check(uR"("k=v\" rest)", "k", u"v\" rest");
    check(uR"(\"k=v)", "\\\"k", u"v");  // an escaped mark does not open
    check(uR"("k=v\\" "l=w")", "k", uR"(v\" )");
    check(u"\"$$$=x\"", "", u"x");
    check(u"\"$$$$=x\"", "$", u"x");
    check(u"\"=$x\"", "", u"$x");
}

TEST(DictionaryText, BadPrefixMakesInvalidAndTheRestIsKept) {
    for (const std::u16string_view bad :
         {u"\"$/Bad=x\"", u"\"$$=x\"", u"\"$\"", u"$", u"\"$$x$=\""}) {
        const auto dictionary =
            FromText(u"\"a=1\"\n" + std::u16string(bad) + u"\n\n\uFEFF\"b=2\"\n\"a=3\"");
        EXPECT_FALSE(dictionary->IsValid());
        EXPECT_EQ(Keys(*dictionary), (std::set<std::string>{"a", "b"}));
        EXPECT_EQ(Lookup(*dictionary, "a"), u"3") << "the later line counts";
    }
}

// A stream reads its mark again: alone on a line it is skipped, before an unquoted key it is part
// of it.
TEST(DictionaryText, StreamsSkipTheirMarkAndNothingElse) {
    const auto check = [](const std::string& bytes, const std::string& key) {
        std::istringstream stream(bytes);
        Dictionary dictionary;
        dictionary.Read(&stream);
        EXPECT_TRUE(dictionary.IsValid());
        EXPECT_EQ(Keys(dictionary), std::set<std::string>{key});
    };
    check("\xFF\xFE\n\0k\0=\0v\0"s, "k");
    check("\xFF\xFEk\0=\0v\0"s, "\xFFk");
}

TEST(DictionaryRead, WhatCannotBeReadMakesInvalid) {
    Dictionary fromNothing;
    fromNothing.Read(static_cast<std::istream*>(nullptr));
    EXPECT_FALSE(fromNothing.IsValid());
    const std::string magic = "Wordlex Binary Format";
    for (const auto& [data, size] : std::initializer_list<std::pair<const char*, int>>{
             {nullptr, 4}, {"ab", 0}, {"ab", -1}, {"a", 1}, {magic.c_str(), 21}}) {
        Dictionary dictionary;
        dictionary.Read(data, size, true);
        EXPECT_FALSE(dictionary.IsValid()) << size;
    }
    std::istringstream empty;
    Dictionary fromEmpty;
    fromEmpty.Read(&empty);
    EXPECT_TRUE(fromEmpty.IsValid()) << "an empty stream is an empty text";
}

TEST(DictionaryLookup, OwnThenMainThenDefault) {
    for (const bool ownCompact : {false, true}) {
        for (const bool mainCompact : {false, true}) {
            const auto own = FromText(u"\"/both=own\"\n\"/empty=\"", ownCompact);
            auto main = FromText(u"\"/both=main\"\n\"/main=main\"\n\"/empty=x\"", mainCompact);
            EXPECT_EQ(Lookup(*own, "$$$/main=default"), u"default");
            main->SetAsMain();
            EXPECT_EQ(Lookup(*own, "$$$/both=default"), u"own");
            EXPECT_EQ(Lookup(*own, "$$$/main=default"), u"main");
            EXPECT_EQ(Lookup(*own, "$$$/empty=default"), u"") << "found, and empty";
            EXPECT_FALSE(own->HasKey("/main", nullptr));
            const unsigned short* units = nullptr;
            unsigned long length = 0;
            EXPECT_TRUE(own->LookupReturnUTF16Ptr("/main", units, length, nullptr));
            EXPECT_EQ(Text(units, length), u"main");
            EXPECT_FALSE(own->LookupReturnUTF16Ptr("/none=default", units, length, nullptr));
            EXPECT_EQ(units, nullptr);
            main.reset();
            EXPECT_EQ(Lookup(*own, "$$$/main=default"), u"default");
        }
    }
}

TEST(DictionaryLookup, DefaultTexts) {
    Dictionary dictionary;
    const lexon::EncodingInfo none{0};
    const lexon::EncodingInfo utf8{1};
    const auto check = [&](const char* key, const lexon::EncodingInfo* encoding,
                           std::u16string_view expected) {
        EXPECT_EQ(Text(dictionary.Lookup(key, encoding)), expected);
        EXPECT_FALSE(dictionary.HasKey(key, nullptr));
    };
    check("$$$/A/B=Fallback", nullptr, u"Fallback");
    check("$$$/A/B=Line^nTwo#{amp}", nullptr, u"Line\nTwo&");
    check("$$$/A/B", nullptr, u"");
    check("$$$/A/B=", nullptr, u"");
    check("A=B=C", nullptr, u"B=C");
    check("=x", nullptr, u"x");
    check("$A=x", nullptr, u"");
    check("$$A=x", nullptr, u"");
    check("", nullptr, u"");
    check(nullptr, nullptr, u"");
    check("k=\xC3\xA9", nullptr, u"\u00C3\u00A9");
    check("k=\xC3\xA9", &none, u"\u00C3\u00A9");
    check("k=\xC3\xA9", &utf8, u"\u00E9");
    check("k=\xC3", &utf8, u"");
    EXPECT_EQ(dictionary.NumKeys(), 0U) << "default texts are not stored";
}

TEST(DictionaryIds, OfTheCompactStoreAlone) {
    Dictionary dictionary(true);
    EXPECT_EQ(Add(dictionary, "$$$/a=ignored", u"A", u"Ctrl+A"), 0U);
    EXPECT_EQ(Add(dictionary, "/b", u"B"), 1U);
    EXPECT_EQ(Add(dictionary, "/a", uR"(A\n2)"), 0U);
    EXPECT_EQ(Add(dictionary, "$x", u"X"), kNone);
    EXPECT_EQ(Lookup(dictionary, "/a"), uR"(A\n2)") << "stored as it is";
    EXPECT_EQ(dictionary.GetNumericId("$$$/b=x"), 1U);
    EXPECT_EQ(dictionary.GetNumericId("/c"), kNone);
    EXPECT_EQ(Text(dictionary.Lookup(1UL, nullptr)), u"B");
    EXPECT_EQ(Text(dictionary.Accelerator("/a", nullptr)), u"Ctrl+A");
    EXPECT_EQ(Text(dictionary.Accelerator(1U, nullptr)), u"");
    EXPECT_FALSE(dictionary.ValidId(2));
    EXPECT_FALSE(dictionary.ValidId(1UL << 32)) << "ids are never cut to 32 bits";
    EXPECT_EQ(Text(dictionary.Lookup(1UL << 32, nullptr)), u"");
    EXPECT_EQ(dictionary.Remove(1UL << 32), kNone);
    EXPECT_EQ(dictionary.Remove("/none"), kNone);
    EXPECT_EQ(dictionary.Remove("/a"), 0U);
    EXPECT_EQ(dictionary.NumKeys(), 1U);
    const std::unique_ptr<char[]> removed(dictionary.GetStringId(0));
    EXPECT_STREQ(removed.get(), "");

    dictionary.SetAsMain();
    Dictionary other(true);
    EXPECT_EQ(Text(other.Lookup(1UL, nullptr)), u"B") << "by id falls back too";
    EXPECT_EQ(Text(other.Accelerator(0U, nullptr)), u"");
}

TEST(DictionaryIds, HashTableGivesFailureValues) {
    const auto dictionary = FromText(u"\"k=v\"");
    EXPECT_EQ(Add(*dictionary, "k2", u"v"), kNone);
    EXPECT_EQ(dictionary->Remove("k"), kNone);
    EXPECT_EQ(dictionary->Remove(0UL), kNone);
    EXPECT_EQ(dictionary->GetNumericId("k"), kNone);
    EXPECT_EQ(dictionary->GetStringId(0), nullptr);
    EXPECT_FALSE(dictionary->ValidId(0));
    EXPECT_EQ(dictionary->NextKey(), nullptr);
    const unsigned short* units = nullptr;
    unsigned long length = 0;
    ASSERT_TRUE(dictionary->LookupReturnUTF16Ptr("k", units, length, nullptr));
    EXPECT_EQ(dictionary->Lookup("k", nullptr).GetData(), units) << "shared";
    dictionary->Locale("fr_FR");
    EXPECT_EQ(Text(dictionary->Locale()), u"");
    EXPECT_EQ(Keys(*dictionary), std::set<std::string>{"k"}) << "and nothing changed";
}

TEST(DictionaryEnumeration, BuffersAndRestarts) {
    for (const bool compact : {false, true}) {
        const auto dictionary = FromText(u"\"abcd=1\"", compact);
        char buffer[5] = "????";
        EXPECT_TRUE(dictionary->NextKey(buffer, sizeof buffer, true));
        EXPECT_STREQ(compact ? "abcd" : "", buffer) << "before a pass";
        ASSERT_TRUE(dictionary->HasMoreKey());
        EXPECT_FALSE(dictionary->NextKey(buffer, 4, false));
        EXPECT_FALSE(dictionary->NextKey(nullptr, 99, false));
        EXPECT_EQ(kBuff, ThrownCode([&] { dictionary->NextKey(buffer, 4, true); }));
        EXPECT_TRUE(dictionary->NextKey(buffer, 5, true));
        EXPECT_STREQ(buffer, "abcd");
        EXPECT_EQ(dictionary->ReSetKeyEnumeration(), compact);
        EXPECT_EQ(dictionary->HasMoreKey(), compact) << "the pass of the hash table continues";
    }
}

TEST(DictionaryCopy, SharesCompactStoresAndNothingElse) {
    const auto hash = FromText(u"\"k=v\"");
    Dictionary empty(*hash);
    EXPECT_EQ(empty.NumKeys(), 0U);
    EXPECT_TRUE(empty.IsValid());

    Dictionary compact(true);
    compact.Locale("fr_FR");
    compact.Locale("");
    compact.Locale(nullptr);
    Dictionary copy(compact);
    Add(copy, "/k", u"v");
    EXPECT_EQ(Lookup(compact, "/k"), u"v");
    EXPECT_EQ(Text(copy.Locale()), u"fr_FR");
    copy = *hash;  // a hash table is never copied
    const Dictionary& self = copy;
    copy = self;
    EXPECT_EQ(Lookup(copy, "/k"), u"v");

    // A copy without a store gets one when an image needs it.
    Load(empty, Saved(compact, lexon::SaveType::kBinary));
    EXPECT_EQ(Lookup(empty, "/k"), u"v");
    EXPECT_EQ(Text(empty.Locale()), u"fr_FR");
}

TEST(DictionarySave, BinaryFileHidesTheTextBeforeIt) {
    Dictionary compact(true);
    Add(compact, "/new", u"new");
    const auto dictionary = FromText(u"\"/old=old\"");
    Load(*dictionary, Saved(compact, lexon::SaveType::kBinary));
    EXPECT_EQ(Keys(*dictionary), std::set<std::string>{"/new"});
    EXPECT_EQ(Lookup(*dictionary, "/old=gone"), u"gone");
    EXPECT_TRUE(dictionary->IsValid());
}

TEST(DictionarySave, TypesAndStores) {
    const auto hash = FromText(u"\"/k=v\"");
    const auto compact = FromText(u"\"/k=v\"", true);
    const std::string text = "\xFF\xFE\"\0/\0k\0=\0v\0\"\0\n\0"s;
    EXPECT_EQ(Saved(*hash, lexon::SaveType::kText), text);
    EXPECT_EQ(Saved(*compact, lexon::SaveType::kText), text);
    EXPECT_EQ(Saved(*hash, lexon::SaveType::kNothing), text);
    EXPECT_EQ(Saved(*compact, lexon::SaveType::kNothing), "\xFF\xFE");
    EXPECT_EQ(Saved(*hash, lexon::SaveType::kBinary), Saved(*compact, lexon::SaveType::kBinary));
    const std::string emptyKey = "\xFF\xFE\"\0=\0v\0\"\0\n\0"s;
    const auto reread = FromText(u"\"=v\"");
    EXPECT_EQ(Saved(*reread, lexon::SaveType::kText), emptyKey);
}

}  // namespace
}  // namespace wordlex_tests
