#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/String.h"
#include "host/vexacore/Threads.h"
#include "host/vexacore/Utility.h"
#include "host/vexacore/Xml.h"

namespace {

using namespace vexacore;

// The texts of the host events that `action` causes.
template <class Action>
std::vector<std::string> EventsOf(Action action) {
    const std::size_t before = debug::HostEvents::All().size();
    action();
    std::vector<std::string> texts;
    const auto events = debug::HostEvents::All();
    for (std::size_t i = before; i < events.size(); ++i)
        texts.push_back(events[i].text);
    return texts;
}

using Texts = std::vector<std::string>;

TEST(SmallBlocks, BlocksAreApartAndUsedAgain) {
    for (const std::size_t bytes : {0u, 1u, 16u, 17u, 255u, 256u, 257u, 5000u}) {
        SCOPED_TRACE(bytes);
        std::array<void*, 100> blocks;
        for (std::size_t i = 0; i < blocks.size(); ++i)
            std::memset(blocks[i] = SmallBlocks::Allocate(bytes), static_cast<int>(i), bytes);
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const std::string expected(bytes, static_cast<char>(i));
            EXPECT_EQ(0, std::memcmp(blocks[i], expected.data(), bytes));
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
        for (std::size_t i = 0; i + 1 < strings.size(); ++i)
            ASSERT_EQ(UTF16String(8 + (i + 1) % 100, static_cast<char16_t>(i + 1)), strings[i]);
    }
}

TEST(Utility, ConvertsEightBitText) {
    EXPECT_EQ(UTF16String(u"A\u00FF\0z", 4), utility::AsciiToUTF16("A\xFF\0z", 4));
    EXPECT_EQ(u"caf\u00E9", utility::AsciiToUTF16("caf\xE9"));
}

TEST(Utility, DecodesUtf8) {
    const struct {
        int line;
        std::string_view bytes;
        UTF16String expected;
    } rows[] = {
        {__LINE__, "", u""},
        {__LINE__, {"a\0b", 3}, UTF16String(u"a\0b", 3)},
        {__LINE__, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC", u"\u00E9\u20AC\U0001F3AC"},
        {__LINE__,
         "a\xFF"
         "b",
         u"a\uFFFDb"},
        {__LINE__, "\xE2\x82", u"\uFFFD"},
        {__LINE__,
         "\xE2\x82"
         "A",
         u"\uFFFDA"},
        {__LINE__, "\xC0\x80", u"\uFFFD\uFFFD"},
        {__LINE__, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {__LINE__, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, utility::UTF8to16(row.bytes));
        EXPECT_EQ(row.expected, utility::StdToUTF16String(row.bytes));
    }
}

TEST(Utility, EncodesPathsAsUtf8) {
    EXPECT_EQ("\xC3\xA9\xF0\x9F\x8E\xAC", utility::UTF16toStdString(u"\u00E9\U0001F3AC"));
    EXPECT_EQ("\xEF\xBF\xBDz", utility::UTF16toStdString({char16_t{0xD83C}, u'z'}));
}

TEST(Utility, TakesPlatformStringsAsTheyStand) {
    const UniChar units[] = {u'a', 0, 0xD83C};
    const CFStringRef text = CFStringCreateWithCharacters(nullptr, units, 3);
    EXPECT_EQ(UTF16String(units, units + 3), utility::MACtoVEXA(text));
    CFRelease(text);
    EXPECT_EQ(u"", utility::MACtoVEXA(nullptr));
}

TEST(Identity, RecordsEachCallInOrder) {
    const std::size_t before = config::GetIdentity().size();
    config::SetSAPCode(u"first");
    config::SetClientName(u"second");
    config::SetSAPCode(u"third");
    const auto identity = config::GetIdentity();
    ASSERT_EQ(before + 3, identity.size());
    EXPECT_EQ("SAPCode", identity[before].setting);
    EXPECT_EQ("ClientName", identity[before + 1].setting);
    EXPECT_EQ(u"third", identity[before + 2].value);
}

TEST(ErrorManager, ReserveServesTheNewHandlerOnce) {
    const std::new_handler outer = std::get_new_handler();
    const Texts events = EventsOf([&] {
        config::ErrorManager manager;
        const config::ErrorManager::NewHandlerInitializer initializer;
        const std::new_handler handler = std::get_new_handler();
        EXPECT_THROW(handler(), std::bad_alloc);  // nobody is installed
        config::ErrorManager::Set(&manager);
        EXPECT_EQ(&manager, config::ErrorManager::Get());
        EXPECT_TRUE(manager.HasReserve());
        handler();
        EXPECT_FALSE(manager.HasReserve());
        EXPECT_THROW(handler(), std::bad_alloc);
        config::ErrorManager::Set(nullptr);
    });
    EXPECT_EQ(outer, std::get_new_handler());
    EXPECT_EQ(nullptr, config::ErrorManager::Get());
    EXPECT_EQ((Texts{"new-handler installed", "error manager installed",
                     "error manager uninstalled", "new-handler removed"}),
              events);
}

TEST(Locale, KeepsWhatItWasGiven) {
    EXPECT_EQ((Texts{"locale initialized: de"}),
              EventsOf([] { Locale::Initialize(u"de", filesupport::Dir(u"/folder")); }));
    EXPECT_EQ(u"de", Locale::GetLanguage());
    EXPECT_EQ(u"/folder", Locale::GetFolder().FullPath());
}

struct CountedFactory : xml::DocParserFactory {
    explicit CountedFactory(int& newLive) : live(newLive) { ++live; }
    ~CountedFactory() override { --live; }
    Owner<xml::AbstractDocParser> GetParser(Owner<xml::AbstractParseHandler>&) override {
        return Owner<xml::AbstractDocParser>();
    }
    int& live;
};

TEST(ParserFactory, IsSwappedWithTheHolder) {
    int live = 0;
    Owner<xml::DocParserFactory> holder(new CountedFactory(live));
    auto* const first = holder.get();
    xml::SetParserFactory(holder);
    EXPECT_EQ(nullptr, holder.get());
    EXPECT_EQ(first, xml::GetParserFactory());
    holder.reset(new CountedFactory(live));
    xml::SetParserFactory(holder);
    EXPECT_EQ(first, holder.get());
    holder.reset();
    xml::SetParserFactory(holder);
    EXPECT_EQ(nullptr, xml::GetParserFactory());
    EXPECT_EQ(1, live);
    holder.reset();
    EXPECT_EQ(0, live);
}

TEST(GlobalTimeMeasurement, KeepsMarksInOrder) {
    using debug::GlobalTimeMeasurement;
    const std::size_t before = GlobalTimeMeasurement::Marks().size();
    EXPECT_EQ((Texts{"M: a", "M: b", "M: c"}), EventsOf([] {
                  GlobalTimeMeasurement::BeginMeasurement("M", "a", true, 1000);
                  GlobalTimeMeasurement::IntermediateMeasurement("M", "b", false, 6);
                  GlobalTimeMeasurement::EndMeasurement("M", "c", true);
              }));
    const auto marks = GlobalTimeMeasurement::Marks();
    ASSERT_EQ(before + 3, marks.size());
    const auto& begin = marks[before];
    EXPECT_EQ(debug::MarkKind::kBegin, begin.kind);
    EXPECT_EQ(1000, begin.value);
    EXPECT_FALSE(marks[before + 1].flag);
    EXPECT_EQ(debug::MarkKind::kEnd, marks[before + 2].kind);
    EXPECT_LE(begin.time, marks[before + 2].time);
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
    EXPECT_EQ((Texts{"waits for the waiter"}), events);
}

TEST(Files, AreReadWhole) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("vexacore-\xC3\xA9-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const auto path = folder / "file";
    std::ofstream(path) << "twelve bytes";
    const UTF16String path16 = utility::StdToUTF16String(path.native());
    EXPECT_TRUE(utility::FileUtils::FileExists(path16));
    EXPECT_FALSE(utility::FileUtils::FileExists(path16 + u"x"));
    EXPECT_FALSE(utility::FileUtils::FileExists(utility::StdToUTF16String(folder.native())));

    using namespace filesupport;
    const File file(path16, StorageType::kPlain);
    IPlatformByteStream stream(file, IPlatformByteStream::kRead);
    std::string bytes(12, '\0');
    EXPECT_EQ(12u, stream.Length());
    stream.ReadBlock(bytes.data(), 12);
    EXPECT_EQ("twelve bytes", bytes);
    EXPECT_THROW(stream.ReadBlock(bytes.data(), 1), std::system_error);
    EXPECT_THROW(IPlatformByteStream(file, 2), std::system_error);
    std::filesystem::remove_all(folder);
    EXPECT_THROW(IPlatformByteStream(file, IPlatformByteStream::kRead), std::system_error);
}

TEST(Files, AppDirHoldsTheRunningProgram) {
    const auto program = std::filesystem::canonical("/proc/self/exe");
    EXPECT_EQ(program.parent_path().native(),
              utility::UTF16toStdString(filesupport::Dir::AppDir().FullPath()));
    EXPECT_EQ(u"", filesupport::Dir().FullPath());
}

}  // namespace
