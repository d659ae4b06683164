#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "host/Foundation/Foundation.h"
#include "host/HUIF/Initializer.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/Threads.h"
#include "host/vexacore/Utility.h"
#include "tests/Environment.h"
#include "tests/TemporaryFolder.h"

namespace {

using namespace vexacore;
using Texts = std::vector<std::string>;

// The texts of the host events that `action` causes.
template <class Action>
Texts EventsOf(Action action) {
    const std::size_t before = debug::HostEvents::All().size();
    action();
    Texts texts;
    for (const auto& event : debug::HostEvents::All())
        texts.push_back(event.text);
    return {texts.begin() + static_cast<std::ptrdiff_t>(before), texts.end()};
}

TEST(ErrorManager, ReserveServesTheNewHandlerOnce) {
    const std::new_handler outer = std::get_new_handler();
    const Texts events = EventsOf([&] {
        config::ErrorManager manager;
        const config::ErrorManager::NewHandlerInitializer initializer;
        const std::new_handler handler = std::get_new_handler();
        EXPECT_THROW(handler(), std::bad_alloc) << "nobody is installed";
        config::ErrorManager::Set(&manager);
        EXPECT_NO_THROW(handler());
        EXPECT_THROW(handler(), std::bad_alloc);
        config::ErrorManager::Set(nullptr);
    });
    EXPECT_EQ(outer, std::get_new_handler());
    EXPECT_EQ((Texts{"new-handler installed", "error manager installed",
                     "error manager uninstalled", "new-handler removed"}),
              events);
}

TEST(UserInterface, IsUpWhileAnInitializerLives) {
    {
        const HUIF::Initializer initializer;
        EXPECT_EQ(1U, HUIF::Initializer::LiveCount());
    }
    EXPECT_EQ(0U, HUIF::Initializer::LiveCount());
}

TEST(RecursiveMutex, LetsOneThreadInAndThatOneAgain) {
    threads::RecursiveMutex mutex;
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 1000; ++i) {
            mutex.Lock(nullptr);
            mutex.Lock("again");
            ++count;
            mutex.Unlock();
            mutex.Unlock();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(2000, count);
}

// The first absolute entry that has a folder of this version of the application, else the first.
TEST(Foundation, FindsTheApplicationSupportFolder) {
    const TemporaryFolder base;
    base.Write("old/Norvale/Framewright Homeline/5.0/x", "");
    base.Write("share/Norvale/Framewright Homeline/5.1/x", "");
    const std::string none = base / "none", old = base / "old", share = base / "share";
    const std::pair<std::string, std::string> rows[] = {
        {"", "/usr/local/share"},
        {none + ":" + old, none},
        {"share:" + old + "::" + share, share},
        {share + ":" + none, share},
        {"share:", "no folder"},
        {"/\xFF", "no folder"},
    };
    for (const auto& [variable, expected] : rows) {
        SetEnvironment("XDG_DATA_DIRS=" + variable);
        std::optional<NSError> error;
        const auto url = NSFileManager::DefaultManager().URLForDirectory(
            NSApplicationSupportDirectory, NSLocalDomainMask, nullptr, false, &error);
        EXPECT_EQ(expected,
                  error ? "no folder" : utility::UTF16toStdString(utility::MACtoVEXA(url->Path())))
            << variable;
    }
}

}  // namespace
