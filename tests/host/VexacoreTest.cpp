#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <tuple>

#include "host/Foundation/Foundation.h"
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
        {"XDG_DATA_DIRS=", "/usr/local/share"},
        {"XDG_DATA_DIRS=" + none + ":" + old, none},
        {"XDG_DATA_DIRS=share:" + old + "::" + share, share},
        {"XDG_DATA_DIRS=" + share + ":" + none, share},
        {"XDG_DATA_DIRS=share:", "no folder"},
        {"XDG_DATA_DIRS=/\xFF", "no folder"},
    };
    const auto& manager = NSFileManager::DefaultManager();
    for (const auto& [environment, expected] : rows) {
        SetEnvironment(environment);
        std::optional<NSError> error;
        const auto url = manager.URLForDirectory(NSApplicationSupportDirectory, NSLocalDomainMask,
                                                 nullptr, false, &error);
        EXPECT_EQ(expected,
                  error ? "no folder" : utility::UTF16toStdString(utility::MACtoVEXA(url->Path())))
            << environment;
    }
    SetEnvironment("XDG_DATA_DIRS=" + share);
    const auto url = manager.URLForDirectory(NSApplicationSupportDirectory, NSLocalDomainMask,
                                             nullptr, false, nullptr);
    ASSERT_TRUE(url);
    const std::tuple<int, int, const NSURL*, bool> others[] = {
        {9, NSLocalDomainMask, nullptr, false},              // the documents
        {NSApplicationSupportDirectory, 1, nullptr, false},  // the user's own
        {NSApplicationSupportDirectory, NSLocalDomainMask, &*url, false},
        {NSApplicationSupportDirectory, NSLocalDomainMask, nullptr, true},
    };
    for (const auto& [directory, domain, relativeTo, create] : others) {
        std::optional<NSError> error;
        for (std::optional<NSError>* const told : {&error, decltype(&error)(nullptr)})
            EXPECT_FALSE(manager.URLForDirectory(NSSearchPathDirectory(directory),
                                                 NSSearchPathDomainMask(domain), relativeTo, create,
                                                 told));
        EXPECT_EQ("only the local Application Support folder is known",
                  error.value_or(NSError{}).localizedDescription);
    }
}

}  // namespace
