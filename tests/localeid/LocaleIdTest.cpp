#include "localeid/LocaleId.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "localeid/LocaleList.h"

namespace {

std::string Describe(const LocaleId& id) {
    return id.language + "/" + id.script + "/" + id.region + " " + id.getName() + " " +
           id.getParentName();
}

// Rows are "name > language/script/region full-name parent-name".
void CheckAll(std::initializer_list<std::string> rows) {
    for (const std::string& row : rows) {
        const std::size_t arrow = row.find(" > ");
        LocaleId id("sr-Latn-RS");  // none of it may remain
        EXPECT_TRUE(id.fromString(row.substr(0, arrow).c_str())) << row;
        EXPECT_EQ(row.substr(arrow + 3), Describe(id)) << row;
    }
}

TEST(LocaleId, ParsesNamesUpToWhereNoTokenBegins) {
    CheckAll({"en_US > en//US en-US en", "EN-us > en//US en-US en", "haw > haw// haw haw",
              "es-419 > es//419 es-419 es", "fr_LATN_fr > fr/Latn/FR fr-FR fr",
              "fr_latn > fr/Latn/ fr fr", " > //  ", "-en > //  ", "\xC3\xA9n > //  ",
              "en_US_ > en//US en-US en", "en__US > en// en en", "en_US..x > en//US en-US en"});
}

TEST(LocaleId, KnowsTheScriptThatLanguageAndRegionImply) {
    CheckAll({"sr > sr/Cyrl/ sr-Cyrl sr-Cyrl", "sr_Latn_RS > sr/Latn/RS sr-Latn-RS sr-Latn"});
    CheckAll({"tg > tg/Cyrl/ tg-Cyrl tg-Cyrl", "uz-UZ > uz/Cyrl/UZ uz-Cyrl-UZ uz-Cyrl"});
    CheckAll({"iu > iu/Cans/ iu-Cans iu-Cans", "bs > bs// bs- bs-", "az > az// az- az-"});
    CheckAll({"az_AZ > az//AZ az--AZ az-", "az--AZ > az// az- az-", "ha_NG > ha//NG ha--NG ha-"});
    CheckAll(
        {"ha_GH > ha/Latn/GH ha-Latn-GH ha-Latn", "ha_Arab_NE > ha/Latn/NE ha-Latn-NE ha-Latn"});
    CheckAll({"zh > zh// zh- zh-", "zh_hans > zh/Hans/ zh-Hans zh-Hans"});
    CheckAll({"zh-Hant-CN > zh/Hans/CN zh-CN zh-Hans", "zh_SG > zh/Hans/SG zh-SG zh-Hans"});
    CheckAll({"zh_TW > zh/Hant/TW zh-TW zh-Hant", "zh_HK > zh/Hant/HK zh-HK zh-Hant"});
    CheckAll({"zh_MO > zh/Hant/MO zh-MO zh-Hant", "mn_CN > mn/Mong/CN mn-CN mn"});
    CheckAll({"mn_SG > mn/Cyrl/SG mn-SG mn", "mn_MN > mn//MN mn-MN mn"});
    CheckAll({"pa_PK > pa/Arab/PK pa-PK pa", "pa_Arab_IN > pa/Guru/IN pa-IN pa"});
}

TEST(LocaleId, IsEmptyAfterANameThatDoesNotFit) {
    const std::string overlong = "en-" + std::string(1'000'000, 'u');
    for (const char* name :
         {"e", "latn", "english", "en-1", "en-Latin", "sr-Latn-Cyrl", "sr-RS-Latn", "en_US.UTF-8",
          overlong.c_str(), static_cast<const char*>(nullptr)}) {
        LocaleId id("sr-Latn-RS");
        EXPECT_FALSE(id.fromString(name));
        EXPECT_EQ("//  ", Describe(id));
        EXPECT_EQ("//  ", Describe(LocaleId(name)));
    }
}

TEST(LocaleId, AnyByteButAsciiLettersAndDigitsSeparates) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string name = std::string("en") + static_cast<char>(byte) + "US";
        const bool separates = byte > 0x7F || !std::isalnum(byte);
        EXPECT_EQ(separates ? "en-US" : "", LocaleId(name.c_str()).getName()) << byte;
    }
}

TEST(LocaleId, ComparesByFullAndByParentName) {
    const auto compare = [](const char* a, const char* b) {
        const LocaleId id(a), other(b);
        return id.isEqual(other) ? "equal" : id.hasSameParent(other) ? "same parent" : "differ";
    };
    EXPECT_STREQ("equal", compare("pt_BR", "pt-br"));
    EXPECT_STREQ("same parent", compare("pt_BR", "pt_PT"));
    EXPECT_STREQ("differ", compare("zh_CN", "zh_TW"));
    EXPECT_STREQ("equal", compare("english", "e"));
}

TEST(LocaleList, SplitsAtAnyRunOfOtherBytesAndAppendsNamesAsTheyAre) {
    const auto check = [](const char* names, std::size_t count, const std::string& entries) {
        CLocaleList list("former");
        EXPECT_EQ(count, list.FromString(names));
        EXPECT_EQ(count == 0, list.empty());
        list.AddLocale(" a;B ");
        ASSERT_EQ(count + 1, list.size());
        std::string found;
        for (std::size_t i = 0; i < list.size(); ++i)
            found += "[" + list[i] + "]";
        EXPECT_EQ(entries + "[ a;B ]", found);
    };
    check("en_US, fr_FR;;de", 3, "[en_US][fr_FR][de]");
    check(";DE;de;DE;", 3, "[DE][de][DE]");
    check("-_-.english\xC3\xA9 0", 3, "[-_-][english][0]");
    for (const char* none : {",,,", "", static_cast<const char*>(nullptr)})
        check(none, 0, "");
}

}  // namespace
