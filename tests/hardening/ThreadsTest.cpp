#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "host/Ovis/Language.h"
#include "host/vexacore/Localizer.h"
#include "host/vexacore/Utility.h"
#include "localizer/VEXALocalizer.h"
#include "tests/TemporaryFolder.h"
#include "tests/hardening/Memory.h"

namespace hardening {
namespace {

using vexacore::UTF16String;

struct Answer {
    const char* key;
    UTF16String text;
};

// The installed localizer, filled from a file.
class Threads : public testing::Test {
protected:
    Threads() {
        Ovis::SetLanguageString(u"en");
        folder.Write("wdictionary.dat",
                     "\"$$$/A=#{eacute} and a text larger than a small block\"\n"
                     "\"$$$/B=b\"\n\"$$$/C=\"");
        EXPECT_TRUE(Load());
        vexacore::config::Localizer::Set(&localizer, {});
    }
    ~Threads() override { vexacore::config::Localizer::Set(nullptr, {}); }

    bool Load() {
        return localizer.LoadDictionary(vexacore::utility::StdToUTF16String(folder.path.native()));
    }
    void LookUpAll() const {
        for (const Answer& answer : answers)
            EXPECT_EQ(answer.text,
                      vexacore::config::Localizer::Get()->GetLocalizedString(answer.key));
    }

    const TemporaryFolder folder;
    FE::Localizer localizer;
    const std::vector<Answer> answers = {
        {"$$$/A=x", u"\u00E9 and a text larger than a small block"},
        {"($$$/B=x)", u"b"},
        {"$$$/C=x", u""},
        {"$$$/none=a^Qb", u"a\"b"},
        {"a=b", u"a=b"},
        {"$$$/A", u"$$$/A"}};
};

TEST_F(Threads, GetTheAnswersOfOneWhateverTheOthersDo) {
    constexpr int kLookingUp = 8;
    constexpr int kRounds = 100;
    const auto runOut = [&](auto work) {
        int outOfMemory = 0;
        for (int i = 0; i < 10 * kRounds; ++i) {
            const FailingAllocation failing(i % 60);
            try {
                work();
            } catch (const std::bad_alloc&) {
                ++outOfMemory;
            }
        }
        EXPECT_LT(kRounds / 10, outOfMemory);
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < kLookingUp; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i)
                LookUpAll();
        });
    threads.emplace_back([&] {
        for (int i = 0; i < kRounds; ++i)
            EXPECT_TRUE(Load());
    });
    threads.emplace_back(runOut, [&] { localizer.GetLocalizedString("$$$/none=a^Qb"); });
    threads.emplace_back(runOut, [&] { Load(); });
    for (std::thread& thread : threads)
        thread.join();
    std::thread([&] { LookUpAll(); }).join();  // the lock is free
}

TEST_F(Threads, FindTheLockFreeWhereverMemoryRanOut) {
    for (const Answer& answer : answers) {
        ForEveryFailingAllocation([&](auto inject) {
            UTF16String text;
            const Outcome outcome =
                inject([&] { text = localizer.GetLocalizedString(answer.key); });
            EXPECT_EQ(outcome == Outcome::kDone ? answer.text : u"", text);
        });
    }
    const long failures = ForEveryFailingAllocation(
        [&](auto inject) {
            inject([&] { EXPECT_TRUE(Load()); });
            LookUpAll();
        },
        Blocks::kKeptByHost);
    EXPECT_LT(5, failures);
    std::thread([&] { LookUpAll(); }).join();
}

}  // namespace
}  // namespace hardening
