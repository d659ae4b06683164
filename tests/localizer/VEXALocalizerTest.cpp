#include "localizer/VEXALocalizer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/Ovis/Language.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/Utility.h"
#include "tests/Environment.h"
#include "tests/TemporaryFolder.h"

namespace {

using vexacore::UTF16String;

constexpr const char* kNeutral = "wdictionary.dat";
constexpr const char* kGerman = "Dictionaries/de/wdictionary.dat";

UTF16String Text(const std::filesystem::path& path) {
    return vexacore::utility::StdToUTF16String(path.native());
}

// A base folder of the test's own; the UI language is "de".
class LocalizerTest : public testing::Test {
protected:
    LocalizerTest() { Ovis::SetLanguageString(u"de"); }
    bool Load() { return localizer.LoadDictionary(Text(base.path)); }

    const TemporaryFolder base;
    FE::Localizer localizer;
};

TEST_F(LocalizerTest, FindsTheLanguageFirstThenTheNeutralFile) {
    UTF16String file = u"untouched";
    base.Write("Dictionaries/fr/wdictionary.dat", "");
    EXPECT_FALSE(localizer.GetWordlexDictionaryFolder(Text(base.path), file));
    EXPECT_EQ(u"untouched", file);
    std::filesystem::create_directories((base / kGerman).parent_path());
    ASSERT_EQ(0, mkfifo((base / kGerman).c_str(), S_IRUSR | S_IWUSR));  // nobody writes into it
    for (const char* const expected : {kNeutral, kGerman}) {
        if (expected == kGerman) std::filesystem::remove(base / kGerman);
        base.Write(expected, "");
        for (const auto& spelled : {Text(base.path), Text(base.path) + u"/"}) {
            EXPECT_TRUE(localizer.GetWordlexDictionaryFolder(spelled, file));
            EXPECT_EQ(Text(base / expected), file);
        }
    }
}

TEST_F(LocalizerTest, LoadReportsWhetherAFileWasOpened) {
    EXPECT_FALSE(Load());
    base.Write(kNeutral, "\"$$$/A=neutral\"\n\"$$$/N=neutral\"");
    std::filesystem::permissions(base / kNeutral, std::filesystem::perms::none);
    const auto failsToOpen = [&] {
        if (geteuid() == 0 && seteuid(1) != 0) return false;  // root may open any file
        return !Load() &&
               vexacore::debug::HostEvents::All().back().text ==
                   "dictionary not opened: " + (base / kNeutral).string() + ": Permission denied";
    };
    EXPECT_EXIT(_exit(failsToOpen() ? 0 : 1), testing::ExitedWithCode(0), "");
    std::filesystem::permissions(base / kNeutral, std::filesystem::perms::owner_all);
    EXPECT_TRUE(Load());
    EXPECT_EQ(u"neutral", localizer.GetLocalizedString("$$$/A=default"));
    base.Write(kGerman, "\"$$$/A=deutsch\"");  // takes the place of the first text, adds no other
    EXPECT_TRUE(Load());
    EXPECT_EQ(u"deutsch", localizer.GetLocalizedString("$$$/A=default"));
    EXPECT_EQ(u"neutral", localizer.GetLocalizedString("$$$/N=default"));
}

TEST_F(LocalizerTest, ReadsEightBitTextAsUtf8InEveryLocale) {
    for (const char* const locale : {"LC_ALL=de_DE.ISO-8859-1", "LC_ALL=en_US.US-ASCII"}) {
        SetEnvironment(locale);
        base.Write(kGerman, "\"$$$/City=Z\xC3\xBCrich\"");
        EXPECT_TRUE(Load());
        EXPECT_EQ(u"Z\u00FCrich", localizer.GetLocalizedString("$$$/City=")) << locale;
    }
    SetEnvironment("");
}

TEST_F(LocalizerTest, AnswersByTheShapeOfTheText) {
    const struct {
        const char* key;
        UTF16String expected;
        UTF16String withoutValidDictionary;
    } rows[] = {
        {"$$$/A/B=Text", u"T\u00FCr", u"$$$/A/B=Text"},
        {"($$$/A/B=Text)", u"T\u00FCr", u"$$$/A/B=Text"},
        {"($$$/A/B=Text", u"T\u00FCr", u"$$$/A/B=Text"},
        {"$$$/Empty=Text", u"", u"$$$/Empty=Text"},
        {"$$$/None=Te\\\"xt", u"Te\"xt", u"$$$/None=Te\\\"xt"},
        {"$$$/None=", u"", u"$$$/None="},
        {"$$$/None=\xC3\xBC", u"\u00C3\u00BC", u"$$$/None=\u00C3\u00BC"},
        {"$$$/A/B", u"$$$/A/B", u"$$$/A/B"},
        {"($$$/A/B)", u"($$$/A/B)", u"($$$/A/B)"},
        {"Volume=11\xC3\xBC", u"Volume=11\u00FC", u"Volume=11\u00FC"},
        {"Volume\xC3\xBC", u"Volume\u00C3\u00BC", u"Volume\u00C3\u00BC"},
        {"$=", u"$=", u"$="},
        {"", u"", u""},
    };
    for (const bool valid : {true, false}) {
        base.Write(kGerman, valid ? "\"$$$/A/B=T\xC3\xBCr\"\n\"$$$/Empty=\"" : "\"$bad\"");
        EXPECT_TRUE(Load());
        for (const auto& row : rows)
            EXPECT_EQ(valid ? row.expected : row.withoutValidDictionary,
                      localizer.GetLocalizedString(row.key))
                << row.key;
    }
}

}  // namespace
