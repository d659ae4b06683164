#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/String.h"
#include "host/vexacore/Threads.h"

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

TEST(SmallBlocks, ThreadsFreeEachOthersStrings) {
    std::vector<UTF16String> strings(1000);
    for (int round = 0; round < 4; ++round) {
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < 4; ++t)
            threads.emplace_back([&strings, t] {
                for (std::size_t i = t; i < strings.size(); i += 4)
                    strings[i] = UTF16String(8 + i % 100, static_cast<char16_t>(i));
            });
        for (auto& thread : threads)
            thread.join();
        std::rotate(strings.begin(), strings.begin() + 1, strings.end());
        for (std::size_t i = 1; i < strings.size(); ++i)
            ASSERT_EQ(UTF16String(8 + i % 100, static_cast<char16_t>(i)), strings[i - 1]);
    }
}

TEST(ErrorManager, ReserveServesTheNewHandlerOnce) {
    const std::new_handler outer = std::get_new_handler();
    const Texts events = EventsOf([&] {
        config::ErrorManager manager;
        const config::ErrorManager::NewHandlerInitializer initializer;
        const std::new_handler handler = std::get_new_handler();
        EXPECT_THROW(handler(), std::bad_alloc) << "nobody is installed";
        config::ErrorManager::Set(&manager);
        EXPECT_TRUE(manager.HasReserve());
        handler();
        EXPECT_FALSE(manager.HasReserve());
        EXPECT_THROW(handler(), std::bad_alloc);
        config::ErrorManager::Set(nullptr);
    });
    EXPECT_EQ(outer, std::get_new_handler());
    EXPECT_EQ((Texts{"new-handler installed", "error manager installed",
                     "error manager uninstalled", "new-handler removed"}),
              events);
}

TEST(RecursiveMutex, IsFreeAfterAsManyUnlocks) {
    threads::RecursiveMutex mutex;
    mutex.Lock(nullptr);
    mutex.Lock("again");  // free for its holder: no wait, no event
    mutex.Unlock();
    const Texts events = EventsOf([&] {
        const std::size_t before = debug::HostEvents::All().size();
        std::thread waiter([&] {
            mutex.Lock("the waiter");
            mutex.Unlock();
        });
        while (debug::HostEvents::All().size() == before)
            std::this_thread::yield();
        mutex.Unlock();
        waiter.join();
    });
    EXPECT_EQ(Texts{"waits for the waiter"}, events);
}

}  // namespace
