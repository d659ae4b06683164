#include "startup/VEXAInitializer.h"

#include <gtest/gtest.h>

#include <optional>

#include "host/Ovis/Language.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/Xml.h"
#include "tests/FailingAllocations.h"

namespace {

using namespace vexacore;

TEST(VEXAInitializer, SetsUpTheHostAndTakesItDownWhereverItFails) {
    const std::new_handler outer = std::get_new_handler();
    std::optional<Startup::VEXAInitializer> initializer;
    Ovis::SetLanguageString(u"ja");
    const auto check = [&](bool failed) {
        EXPECT_EQ(!failed, initializer.has_value());
        if (!failed) {
            EXPECT_NE(nullptr, config::ErrorManager::Get());
            EXPECT_NE(nullptr, config::Localizer::Get());
            EXPECT_NE(nullptr, xml::GetParserFactory());
            EXPECT_NE(outer, std::get_new_handler());
            EXPECT_EQ(u"ja", Locale::GetLanguage());
            initializer.reset();
            EXPECT_EQ(nullptr, xml::GetParserFactory());
        }
        EXPECT_EQ(nullptr, config::ErrorManager::Get());
        EXPECT_EQ(nullptr, config::Localizer::Get());
        EXPECT_EQ(outer, std::get_new_handler());
    };
    FailEachAllocation([&] { initializer.emplace(); }, check);
}

TEST(VEXAInitializer, TellsWhoTheClientIs) {
    const std::size_t before = config::GetIdentity().size();
    const Startup::VEXAInitializer initializer;
    const auto identity = config::GetIdentity();
    const std::pair<std::string_view, UTF16String> expected[] = {
        {"ClientName", u"Framewright Homeline"},
        {"CompanyName", u"Norvale"},
        {"ClientVersion", u"5.1"},
        {"ClientInternalVersion", u"5.1"},
        {"ClientBuildNumber", u"5.1.0.1"},
        {"SuiteClientFamily", u"HOMELINE"},
        {"SAPCode", u"KTX"}};
    ASSERT_EQ(before + std::size(expected), identity.size());
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(expected[i], std::pair(std::string_view(identity[before + i].setting),
                                         identity[before + i].value));
}

}  // namespace
