#include "localizer/VEXALocalizer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "host/Ovis/Language.h"
#include "host/vexacore/Utility.h"

namespace {

using vexacore::UTF16String;
namespace fs = std::filesystem;

// A base folder of the test's own; the UI language is "de".
class LocalizerTest : public testing::Test {
protected:
    LocalizerTest() { Ovis::SetLanguageString(u"de"); }
    ~LocalizerTest() override { fs::remove_all(base); }

    // Writes the dictionary file below the folder `language`, or language-neutral.
    void Write(const std::string& language, const std::string& text) const {
        const fs::path folder = language.empty() ? base : base / "Dictionaries" / language;
        fs::create_directories(folder);
        std::ofstream(folder / "wdictionary.dat") << text;
    }
    bool Load() { return localizer.LoadDictionary(Text(base)); }
    static UTF16String Text(const fs::path& path) {
        return vexacore::utility::StdToUTF16String(path.native());
    }

    fs::path base = fs::temp_directory_path() / ("localizer-" + std::to_string(getpid()));
    FE::Localizer localizer;
};

TEST_F(LocalizerTest, FindsTheLanguageFirstThenTheNeutralFile) {
    UTF16String file = u"untouched";
    Write("fr", "");
    EXPECT_FALSE(localizer.GetWordlexDictionaryFolder(Text(base), file));
    EXPECT_EQ(u"untouched", file);

    const fs::path neutral = base / "wdictionary.dat";
    const fs::path german = base / "Dictionaries" / "de" / "wdictionary.dat";
    fs::create_directories(german);  // a folder of that name is no dictionary
    for (const auto& [language, expected] : {std::pair("", neutral), std::pair("de", german)}) {
        if (expected == german) fs::remove(german);
        Write(language, "");
        for (const auto& spelled : {Text(base), Text(base) + u"/"}) {
            EXPECT_TRUE(localizer.GetWordlexDictionaryFolder(spelled, file));
            EXPECT_EQ(Text(expected), file);
        }
    }
}

TEST_F(LocalizerTest, LoadReportsWhetherAFileWasOpened) {
    EXPECT_FALSE(Load());
    Write("", "\"$$$/A=neutral\"\n\"$$$/N=neutral\"");
    EXPECT_TRUE(Load());
    EXPECT_EQ(u"neutral", localizer.GetLocalizedString("$$$/A=default"));
    Write("de", "\"$$$/A=deutsch\"");  // takes the place of the first text, adds no other
    EXPECT_TRUE(Load());
    EXPECT_EQ(u"deutsch", localizer.GetLocalizedString("$$$/A=default"));
    EXPECT_EQ(u"neutral", localizer.GetLocalizedString("$$$/N=default"));
    Write("de", "\"$bad\"");
    EXPECT_TRUE(Load());
}

TEST_F(LocalizerTest, AnswersByTheShapeOfTheText) {
    Write("de", "\"$$$/A/B=T\xC3\xBCr\"\n\"$$$/Empty=\"");
    ASSERT_TRUE(Load());
    const struct {
        int line;
        const char* key;
        UTF16String expected;
        UTF16String withoutValidDictionary;
    } rows[] = {
        {__LINE__, "$$$/A/B=Text", u"T\u00FCr", u"$$$/A/B=Text"},
        {__LINE__, "($$$/A/B=Text)", u"T\u00FCr", u"$$$/A/B=Text"},
        {__LINE__, "($$$/A/B=Text", u"T\u00FCr", u"$$$/A/B=Text"},
        {__LINE__, "$$$/Empty=Text", u"", u"$$$/Empty=Text"},
        {__LINE__, "$$$/None=Te\\\"xt", u"Te\"xt", u"$$$/None=Te\\\"xt"},
        {__LINE__, "$$$/None=", u"", u"$$$/None="},
        {__LINE__, "$$$/None=\xC3\xBC", u"\u00C3\u00BC", u"$$$/None=\u00C3\u00BC"},
        {__LINE__, "$$$/A/B", u"$$$/A/B", u"$$$/A/B"},
        {__LINE__, "($$$/A/B)", u"($$$/A/B)", u"($$$/A/B)"},
        {__LINE__, "Volume=11\xC3\xBC", u"Volume=11\u00FC", u"Volume=11\u00FC"},
        {__LINE__, "Volume\xC3\xBC", u"Volume\u00C3\u00BC", u"Volume\u00C3\u00BC"},
        {__LINE__, "$=", u"$=", u"$="},
        {__LINE__, "", u"", u""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, localizer.GetLocalizedString(row.key));
    }
    Write("de", "\"$bad\"");
    ASSERT_TRUE(Load());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.withoutValidDictionary, localizer.GetLocalizedString(row.key));
    }
}

TEST_F(LocalizerTest, ThreadsLookUpWhileAnotherLoads) {
    Write("de", "\"$$$/A=deutsch\"");
    ASSERT_TRUE(Load());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 500; ++i)
                ASSERT_EQ(u"deutsch", localizer.GetLocalizedString("$$$/A=default"));
        });
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(Load());
    for (auto& thread : threads)
        thread.join();
}

}  // namespace
