#include "localeid/MuiLib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "host/CoreFoundation/LiveObjects.h"
#include "localeid/MuiLibImpl.h"
#include "localeid/MuiMessages.h"
#include "tests/Environment.h"
#include "tests/hardening/Memory.h"

extern "C" std::size_t UseMuiLibFromC(const char** order, const char** locales,
                                      const wchar_t* messages[2]);

namespace {

// A locale array made from the names of a list.
struct Locales {
    explicit Locales(const std::string& text) : names(text.c_str()), array(names.size() + 1) {
        for (std::size_t i = 0; i < names.size(); ++i)
            array[i] = names[i].c_str();
    }
    std::string Text() const {  // the names in their present order
        std::string text;
        for (const char* name : array)
            text += name != nullptr ? name + std::string(" ") : "";
        return text.substr(0, text.size() - !text.empty());
    }
    const char** operator*() { return array.data(); }

    CLocaleList names;
    std::vector<const char*> array;
};

const MuiMessageRow& RowOf(const std::string& locale) {
    return *std::ranges::find(allMessages, locale, &MuiMessageRow::locale);
}

void Prefer(const std::string& languages) { SetEnvironment("LANGUAGE=" + languages); }

// Every test begins and ends without a forced order and leaves no CoreFoundation object alive.
class MuiLib : public testing::Test {
protected:
    MuiLib() { SetEnvironment(""); }
    ~MuiLib() override {
        MuiForceOrderOfOsLocales(nullptr);
        EXPECT_EQ(liveObjects, host::cf::LiveObjectCount());
    }
    const std::size_t liveObjects = host::cf::LiveObjectCount();
};

TEST_F(MuiLib, SortsByPreference) {
    const auto check = [](const char* preferred, const char* names, std::size_t placed,
                          const char* sorted) {
        SCOPED_TRACE(preferred);
        Locales locales(names);
        EXPECT_EQ(placed, MuiSortLocalesPerUserPreferenceImpl(*locales, CLocaleList(preferred)));
        EXPECT_EQ(sorted, locales.Text());
    };
    check("en-GB;fr", "ar en fr", 2, "en fr ar");
    check("pt-PT", "ar pt_BR", 1, "pt_BR ar");
    check("zh-Hant-TW", "zh_Hans zh_Hant", 1, "zh_Hant zh_Hans");
    check("en_GB", "en_US en en-gb", 3, "en-gb en en_US");
    check("xx;de", "ar de", 1, "de ar");
    check("de,de", "fr de it DE", 2, "de DE fr it");
    check("klingon", "fr english e", 2, "english e fr");
    check("az_AZ", "fr az_AZ az", 2, "az az_AZ fr");
    check("", "fr xx de", 0, "fr xx de");
    check("de", "", 0, "");
    EXPECT_EQ(0u, MuiSortLocalesPerUserPreference(nullptr));
}

TEST_F(MuiLib, TakesTheForcedOrderBeforeTheOneOfTheSystem) {
    EXPECT_EQ("", getOsLangPref());
    Prefer("pt_PT:d\xC3\xA9:de");  // a name that is not ASCII is skipped
    const auto check = [](std::vector<const char*> forced, const char* preference) {
        forced.push_back(nullptr);
        MuiForceOrderOfOsLocales(forced.data());
        EXPECT_EQ(preference, getOsLangPref());
    };
    check({}, "pt_PT;de");
    check({"de", "fr"}, "de;fr");
    check({"", "", "it", "", "en_GB", ""}, "it;en_GB");
    check({"", ""}, "pt_PT;de");
    check({"sv"}, "sv");
    MuiForceOrderOfOsLocales(nullptr);
    EXPECT_EQ("pt_PT;de", getOsLangPref());
}

TEST_F(MuiLib, HasTextsOfItsOwnInEachLanguage) {
    const CLocaleList languages(
        "ar bg cs da de el en es et fi fr he hr hu it ja ko lt lv nb nl pl pt_BR ro ru sk sl sv tr "
        "uk zh_Hans zh_Hant");
    ASSERT_EQ(kMessageLanguages, languages.size());
    std::set<std::wstring> texts;
    for (std::size_t i = 0; i < kMessageLanguages; ++i) {
        SCOPED_TRACE(languages[i]);
        Prefer("xx:" + languages[i]);
        EXPECT_EQ(languages[i], allMessages[i].locale);
        const wchar_t* const unavailable = MuiGetLocaleUnavailableErrorMessage();
        EXPECT_EQ(allMessages[i].localeUnavailable, unavailable);
        const wchar_t* const unsupported =
            MuiGetUnsupportedSystemLocaleErrorMessage(*Locales("xx " + languages[i]));
        EXPECT_EQ(allMessages[i].unsupportedSystemLocale, unsupported);
        for (const std::wstring text : {unavailable, unsupported}) {
            texts.insert(text);
            // Neither replacement characters nor direction marks, and no sentences run together.
            EXPECT_EQ(std::wstring::npos, text.find_first_of(L"\uFFFD\u200E\u200F\u202A\u202E"));
            EXPECT_EQ(std::wstring::npos, text.find(L"  "));
        }
    }
    EXPECT_EQ(2 * kMessageLanguages, texts.size());
    const MuiMessageRow& english = RowOf("en");
    EXPECT_EQ(
        std::wstring(english.localeUnavailable) + L"\n" + english.unsupportedSystemLocale,
        L"The localized resource files for this application could not be loaded. Please "
        L"reinstall or repair the application and try again.\nThis application does not "
        L"support the current OS language. Please open the “Regional and Language Options” "
        L"control panel from the Windows Start menu. Then, in the Advanced tab (in Vista, the "
        L"Administrative tab), change the \"Language for non-Unicode programs\" setting to "
        L"match the application language.");
}

TEST_F(MuiLib, AnswersInTheBestLanguageThatIsThere) {
    const auto check = [](const char* preferred, const char* unavailable, const char* supported,
                          const char* sorted, const char* unsupported) {
        SCOPED_TRACE(preferred);
        Prefer(preferred);
        Locales locales(supported);
        EXPECT_EQ(RowOf(unavailable).localeUnavailable, MuiGetLocaleUnavailableErrorMessage());
        EXPECT_EQ(RowOf(unsupported).unsupportedSystemLocale,
                  MuiGetUnsupportedSystemLocaleErrorMessage(*locales));
        EXPECT_EQ(sorted, locales.Text());
    };
    check("", "ar", "fr de", "fr de", "fr");
    check("", "ar", "", "", "ar");
    check("xx", "ar", "xx", "xx", "ar");
    check("de", "de", "fr de", "de fr", "de");
    check("pt_PT:de", "pt_BR", "ja de", "de ja", "de");
    check("zh_TW", "zh_Hant", "en zh_HK", "zh_HK en", "zh_Hant");
    check("zh_SG", "zh_Hans", "xx zh_CN", "zh_CN xx", "zh_Hans");
    EXPECT_EQ(RowOf("ar").unsupportedSystemLocale,
              MuiGetUnsupportedSystemLocaleErrorMessage(nullptr));
}

TEST_F(MuiLib, IsUsableFromC) {
    Locales order("de"), locales("fr de");
    const wchar_t* messages[2] = {};
    EXPECT_EQ(1u, UseMuiLibFromC(*order, *locales, messages));
    EXPECT_EQ("de fr", locales.Text());
    EXPECT_EQ(RowOf("de").localeUnavailable, messages[0]);
    EXPECT_EQ(RowOf("de").unsupportedSystemLocale, messages[1]);
}

// Arrays keep each pointer, a forced order is the old or the new one.
TEST_F(MuiLib, LosesNothingWhenMemoryRunsOut) {
    Locales order("name-too-long-for-a-short-string pt_PT de");
    Prefer("fi:this-language-has-an-endless-name");
    Locales locales("ar de another-name-too-long-for-it pt_BR");
    const std::vector<const char*> original = locales.array;
    const long failures = hardening::ForEveryFailingAllocation([&](auto inject) {
        MuiForceOrderOfOsLocales(*Locales("sv"));
        inject([&] {
            std::string fromSystem;
            GetMacOsLang(fromSystem);
            MuiForceOrderOfOsLocales(*order);
            MuiGetUnsupportedSystemLocaleErrorMessage(*locales);
        });
        const std::string forced = getOsLangPref();
        EXPECT_TRUE(forced == "sv" || forced == "name-too-long-for-a-short-string;pt_PT;de");
        EXPECT_TRUE(std::ranges::is_permutation(original, locales.array));
        locales.array = original;
        MuiForceOrderOfOsLocales(nullptr);
    });
    EXPECT_LT(10, failures);
}

}  // namespace
