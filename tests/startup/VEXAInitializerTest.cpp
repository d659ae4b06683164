#include "startup/VEXAInitializer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <optional>

#include "host/Ovis/Language.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/Xml.h"

namespace {

long allocationsLeft = -1;  // before one fails; negative: none fails

}  // namespace

void* operator new(std::size_t bytes) {
    void* const block = allocationsLeft-- == 0 ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
    return block ? block : throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

using namespace vexacore;

void ExpectNothingBorrowed(std::new_handler outer) {
    EXPECT_EQ(nullptr, config::ErrorManager::Get());
    EXPECT_EQ(nullptr, config::Localizer::Get());
    EXPECT_EQ(outer, std::get_new_handler());
}

TEST(VEXAInitializer, SetsUpTheHostAndTakesItDown) {
    const std::new_handler outer = std::get_new_handler();
    const std::size_t before = config::GetIdentity().size();
    Ovis::SetLanguageString(u"ja");
    {
        const Startup::VEXAInitializer initializer;
        EXPECT_NE(nullptr, config::ErrorManager::Get());
        EXPECT_NE(nullptr, config::Localizer::Get());
        EXPECT_NE(nullptr, xml::GetParserFactory());
        EXPECT_NE(outer, std::get_new_handler());
        EXPECT_EQ(u"ja", Locale::GetLanguage());
    }
    ExpectNothingBorrowed(outer);
    EXPECT_EQ(nullptr, xml::GetParserFactory());

    const std::pair<std::string_view, UTF16String> expected[] = {
        {"ClientName", u"Framewright Homeline"},
        {"CompanyName", u"Norvale"},
        {"ClientVersion", u"5.1"},
        {"ClientInternalVersion", u"5.1"},
        {"ClientBuildNumber", u"5.1.0.1"},
        {"SuiteClientFamily", u"HOMELINE"},
        {"SAPCode", u"KTX"}};
    const auto identity = config::GetIdentity();
    ASSERT_EQ(before + std::size(expected), identity.size());
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(expected[i].first, identity[before + i].setting);
        EXPECT_EQ(expected[i].second, identity[before + i].value);
    }
}

TEST(VEXAInitializer, FailingAnywhereLeavesNothingBorrowedInTheHost) {
    const std::new_handler outer = std::get_new_handler();
    int failures = 0;
    for (long k = 0;; ++k) {
        SCOPED_TRACE(k);
        std::optional<Startup::VEXAInitializer> initializer;
        allocationsLeft = k;
        try {
            initializer.emplace();
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        const bool reachedTheEnd = allocationsLeft >= 0;
        allocationsLeft = -1;
        if (!initializer) ExpectNothingBorrowed(outer);
        initializer.reset();
        ExpectNothingBorrowed(outer);
        if (reachedTheEnd) break;
    }
    EXPECT_LT(10, failures);
}

}  // namespace
