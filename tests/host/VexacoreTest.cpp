#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <thread>

#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/String.h"
#include "host/vexacore/Threads.h"
#include "host/vexacore/Utility.h"
#include "host/vexacore/Xml.h"
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

TEST(SmallBlocks, BlocksAreApartAndUsedAgain) {
    for (const std::size_t bytes : {0u, 1u, 16u, 17u, 255u, 256u, 257u, 5000u}) {
        std::array<void*, 100> blocks;
        for (std::size_t i = 0; i < blocks.size(); ++i)
            std::memset(blocks[i] = SmallBlocks::Allocate(bytes), static_cast<int>(i), bytes);
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const std::string expected(bytes, static_cast<char>(i));
            EXPECT_EQ(0, std::memcmp(blocks[i], expected.data(), bytes)) << bytes;
            SmallBlocks::Free(blocks[i], bytes);
        }
    }
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

TEST(Utility, ConvertsTextsAndReplacesWhatIsNone) {
    const auto check = [](std::string_view bytes, const UTF16String& expected) {
        EXPECT_EQ(expected, utility::UTF8to16(bytes)) << bytes;
        EXPECT_EQ(expected, utility::StdToUTF16String(bytes)) << bytes;
    };
    check("", u"");
    check({"a\0b", 3}, UTF16String(u"a\0b", 3));
    check("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC", u"\u00E9\u20AC\U0001F3AC");
    check("a\xFFz", u"a\uFFFDz");
    check("\xE2\x82", u"\uFFFD");
    check("\xE2\x82z", u"\uFFFDz");
    check("\xC0\x80", u"\uFFFD\uFFFD");
    check("\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD");
    check("\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ("\xC3\xA9\xF0\x9F\x8E\xAC", utility::UTF16toStdString(u"\u00E9\U0001F3AC"));
    EXPECT_EQ("\xEF\xBF\xBDz", utility::UTF16toStdString({char16_t{0xD83C}, u'z'}));
    EXPECT_EQ(UTF16String(u"A\u00FF\0z", 4), utility::AsciiToUTF16("A\xFF\0z", 4));
    EXPECT_EQ(u"caf\u00E9", utility::AsciiToUTF16("caf\xE9"));
    const UniChar units[] = {u'a', 0, 0xD83C};
    const CFStringRef text = CFStringCreateWithCharacters(nullptr, units, 3);
    EXPECT_EQ(UTF16String(units, units + 3), utility::MACtoVEXA(text));
    CFRelease(text);
    EXPECT_EQ(u"", utility::MACtoVEXA(nullptr));
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

TEST(ParserFactory, IsSwappedWithTheHolder) {
    struct Factory : xml::DocParserFactory {
        Owner<xml::AbstractDocParser> GetParser(Owner<xml::AbstractParseHandler>&) override {
            return Owner<xml::AbstractDocParser>();
        }
    };
    Owner<xml::DocParserFactory> holder(new Factory);
    const auto* const first = holder.get();
    xml::SetParserFactory(holder);
    EXPECT_EQ(nullptr, holder.get());
    EXPECT_EQ(first, xml::GetParserFactory());
    holder.reset(new Factory);
    xml::SetParserFactory(holder);
    EXPECT_EQ(first, holder.get());
    holder.reset();
    xml::SetParserFactory(holder);
    EXPECT_EQ(nullptr, xml::GetParserFactory());
    EXPECT_NE(nullptr, holder.get());
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

TEST(Files, AreReadWhole) {
    const TemporaryFolder folder;
    const UTF16String path =
        utility::StdToUTF16String(folder.Write("file", "twelve bytes").native());
    EXPECT_TRUE(utility::FileUtils::FileExists(path));
    EXPECT_FALSE(utility::FileUtils::FileExists(path + u"x"));
    EXPECT_FALSE(utility::FileUtils::FileExists(utility::StdToUTF16String(folder.path.native())));

    using namespace filesupport;
    const File file(path, StorageType::kPlain);
    IPlatformByteStream stream(file, IPlatformByteStream::kRead);
    std::string bytes(12, '\0');
    EXPECT_EQ(12u, stream.Length());
    stream.ReadBlock(bytes.data(), 12);
    EXPECT_EQ("twelve bytes", bytes);
    EXPECT_THROW(stream.ReadBlock(bytes.data(), 1), std::system_error);
    EXPECT_THROW(IPlatformByteStream(file, 2), std::system_error);
    std::filesystem::remove(folder / "file");
    EXPECT_THROW(IPlatformByteStream(file, IPlatformByteStream::kRead), std::system_error);
    EXPECT_EQ(std::filesystem::canonical("/proc/self/exe").parent_path().native(),
              utility::UTF16toStdString(Dir::AppDir().FullPath()));
}

}  // namespace
