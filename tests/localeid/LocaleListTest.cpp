#include "localeid/LocaleList.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
    check(",,,", 0, "");
    check("", 0, "");
    check(nullptr, 0, "");
}

}  // namespace
