#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/TemporaryFolder.h"
#include "tests/wordlex/Images.h"
#include "tests/wordlex/catalog/SameAnswers.h"
#include "wordlex/catalog/IndexSection.h"

namespace catalog_tests {
namespace {

using lexon::Catalog;
using lexon::Chain;
using lexon::LoadError;
using lexon::LoadResult;
using lexon_private::Dictionary;
using namespace wordlex_tests;
using namespace std::string_literals;

Dictionary Engine(const std::string& file) {
    Dictionary engine(true);
    engine.Read(file.data(), static_cast<int>(file.size()), true);
    return engine;
}

std::string ImageOf(const std::string& file, lexon::EndianT order = lexon::EndianT::kHost,
                    const char* locale = "fr_FR") {
    Dictionary engine = Engine(file);
    engine.Locale(locale);
    std::ostringstream out;
    engine.Serialize(out, lexon::SaveType::kBinary, nullptr, order, 0);
    return out.str();
}

std::string Indexed(const std::string& image) {
    return image + lexon::detail::MakeIndexSection(image);
}

// A text with so many entries. Some are repeated, are empty or have escapes.
std::string ManyLines(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += "\"$$$/Group" + std::to_string(i % 7) + "/Key" + std::to_string(i - i % 11 / 10) +
                "=" + (i % 13 == 0 ? "" : "Text ^Q #{eacute} " + std::string(i % 90, 'x')) + "\"\n";
    }
    return text;
}

TEST(Catalog, AnswersAsTheEngineDoes) {
    const std::string texts[] = {
        "\"$$$/A=a\"\n\"$$$/A=b\"\nplain=text\n\"$$$=of the empty key\"\n\"$$$/NoEquals\"",
        "\xFF\xFE" + "\"\0$\0$\0$\0/\0A\0=\0\xE9\0\"\0\r\0\n\0\"\0\x41\x01=\0\x3C\xD8\"\0"s,
        "\xFE\xFF" + "\0\"\0A\0=\0b\0\"\x20\x28\0\"\0B\0=\0c\0\"\0\0\0\"\0C\0=\0d"s,
        "\"$$$/A=Say \\\"hello\\\" ^^ ^0 #{macos}x#{ios}y\"\r\n\r\n  \"$$$/B=a=b\" rest",
        "a=b\n" + std::string(70'000, 'k') + "=" + std::string(70'000, 'v') + "\n",
        "\n\n",
        ManyLines(3),
        ManyLines(2000)};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 40));
        EXPECT_EQ("", DifferenceOf(text));
        for (const auto order : {lexon::EndianT::kBig, lexon::EndianT::kLittle}) {
            for (const char* const locale :
                 {"fr_FR", "zh_Hans"}) {  // texts at even and odd offsets
                const std::string image = ImageOf(text, order, locale);
                EXPECT_EQ("", DifferenceOf(image));
                EXPECT_EQ("", DifferenceOf(Indexed(image)));
            }
        }
    }
    for (const std::string* const file :
         {&kLittleFile, &kBigFile, &kVersion20File, &kFileWithoutKeys, &kBigFileWithoutKeys,
          &kVersion15File, &kVersion15Utf8File, &kVersion10File})
        EXPECT_EQ("", DifferenceOf(*file)) << file - &kLittleFile;
    // Lists of the hash index, from byte 93 on, that no writer makes; the same key twice, at 83;
    // texts at odd offsets, at 71, and of odd lengths, at 79.
    constexpr int kKeyLengths = 67;
    constexpr int kKeys = 83;
    constexpr int kSlots = 93;
    constexpr int kIds = 105;
    using Change = std::pair<int, const char*>;
    for (const std::vector<Change>& changes :
         {std::vector<Change>{{kSlots, "2502 2402"}},
          {{kIds, "01000000 00000000"}},
          {{kIds, "00000000 00000000"}},
          {{kSlots, "2402 2402"}, {kKeys, "'/A/A'"}},
          {{kSlots, "2402 2402"}, {kKeys, "'/A/A'"}, {kIds, "01000000 00000000"}},
          {{kKeys, "'/A/A'"}, {kIds, "01000000 00000000"}},
          {{kKeyLengths, "0000 0200"}, {kSlots, "0000"}},
          {{71, "01000000 02000000 0200 0200 "}},
          {{79, "0300 0100"}}}) {
        std::string odd = kLittleFile;
        for (const auto& [at, bytes] : changes)
            odd.replace(static_cast<std::size_t>(at), Hex(bytes).size(), Hex(bytes));
        EXPECT_EQ("", DifferenceOf(odd)) << changes.front().first;
    }
}

TEST(Catalog, MapsAnIndexedFile) {
    const TemporaryFolder folder;
    for (const char* const locale : {"fr_FR", "zh_Hans"}) {
        const std::string image = ImageOf(ManyLines(500), lexon::EndianT::kHost, locale);
        const std::string file = Indexed(image);
        Dictionary engine = Engine(file);
        EXPECT_EQ(image, ImageOf(file, lexon::EndianT::kHost, locale));  // the rest is ignored
        const Catalog mapped = Catalog::Load(folder.Write("t.dat", file));
        EXPECT_EQ(locale, mapped.Locale());
        EXPECT_EQ("", Difference(mapped, engine));
        // In place: a text is inside the caller's bytes.
        const auto block = std::make_shared<std::string>(file);
        const Catalog kept = Catalog::Load(BytesOf(*block), block);
        const auto* const text = reinterpret_cast<const char*>(kept.Find("/Group1/Key1")->data());
        EXPECT_TRUE(text > block->data() && text < block->data() + block->size());
        EXPECT_EQ("", Difference(kept, engine));
        EXPECT_EQ(2, block.use_count());
    }
}

// A damaged index can make look-ups return wrong texts, but no more. An index that cannot be used
// is ignored.
TEST(Catalog, SurvivesADamagedIndex) {
    const std::string image = ImageOf("\"$$$/A=a\"\n\"$$$/B=b\"\n\"$$$/C=c\"");
    const std::string file = Indexed(image);
    const auto ask = [](const std::string& bytes) {
        const std::shared_ptr<char16_t[]> exact(new char16_t[(bytes.size() + 1) / 2]);
        auto* const begin = reinterpret_cast<std::byte*>(exact.get()) + bytes.size() % 2;
        std::ranges::copy(BytesOf(bytes), begin);
        const LoadResult loaded = Catalog::TryLoad({begin, bytes.size()}, exact);
        if (!loaded.Ok()) return std::size_t{0};
        std::size_t units = 0;
        for (const char* const key : {"/A", "/B", "/C", "/D"})
            units += loaded->Find(key).value_or(u"").size();
        for (const lexon::Entry& entry : loaded->All())
            units += entry.text.size() + entry.accelerator.size();
        return units;
    };
    EXPECT_EQ(6u, ask(file));
    for (std::size_t size = image.size(); size < file.size(); ++size)
        EXPECT_EQ(6u, ask(file.substr(0, size))) << size;
    for (std::size_t at = 0; at < file.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            std::string damaged = file;
            damaged[at] = static_cast<char>(value);
            EXPECT_GE(6u * 0xFFFF, ask(damaged));
        }
    }
}

TEST(Catalog, TakesKeysAsCallersWriteThem) {
    const Catalog catalog = Catalog::Load(BytesOf("\"$$$/A/B=text\"\n\"$$$(x=y\""));
    const struct {
        const char* key;
        const char16_t* found;
        std::u16string_view text;
    } rows[] = {
        {"/A/B", u"text", u"text"},
        {"$$$/A/B", u"text", u"text"},
        {"$$$/A/B=Default", u"text", u"text"},
        {"($$$/A/B=Default)", u"text", u"text"},
        {"($$$/A/B)", u"text", u"text"},
        {"($$$/A/B=Default", u"text", u"text"},
        {"(x", u"y", u"y"},
        {"$$$/no=Say ^Qhi^Q#{endl}\\n", nullptr, u"Say \"hi\"\r\n"},
        {"($$$/no=\xC3\xA9 (a))", nullptr, u"é (a)"},
        {"$$$/no=\xF0\x9F\x98\x80\xFF\xED\xA0\x80", nullptr, u"\U0001F600\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"$$$/no", nullptr, u""},
        {"$/A/B", nullptr, u""},
        {"$$=x", nullptr, u""},
        {"", nullptr, u""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        const auto found = catalog.Find(row.key);
        EXPECT_EQ(found, catalog.Find(std::string_view(row.key)));
        EXPECT_EQ(row.found != nullptr, found.has_value());
        if (row.found != nullptr) {
            EXPECT_EQ(row.found, found);
        }
        EXPECT_EQ(row.text, catalog.Text(row.key));
    }
    EXPECT_EQ(
        "\xF0\x9F\x98\x80\xEF\xBF\xBD"
        "a\xC3\xA9",
        Catalog::Load(BytesOf("\xFF\xFEk\0=\0\x3D\xD8\0\xDE\0\xDE"
                              "a\0\xE9\0"s))
            .TextUtf8("k"));
    EXPECT_EQ(u"d", Catalog().Text("$$$/A=d"));
    EXPECT_FALSE(Catalog().Find("/A").has_value() || Catalog().Find(0).has_value());
}

TEST(Catalog, SaysWhyItDoesNotLoad) {
    const TemporaryFolder folder;
    const std::string name = (folder / "t.dat").string();
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("loop", folder / "loop");
    ASSERT_EQ(0, mkfifo((folder / "pipe").c_str(), 0600));
    for (const auto& [path, code] : {std::pair(folder / "none", LoadError::Code::kMissing),
                                     {folder / "loop", LoadError::Code::kUnreadable},
                                     {folder / "folder", LoadError::Code::kNotAFile},
                                     {folder / "pipe", LoadError::Code::kNotAFile},
                                     {"/dev/null", LoadError::Code::kNotAFile}}) {
        const LoadResult loaded = Catalog::TryLoad(path);
        ASSERT_FALSE(loaded.Ok());
        EXPECT_EQ(code, loaded.Error().code) << path;
        EXPECT_EQ(path, loaded.Error().file);
        EXPECT_THROW(Catalog::Load(path), lexon::LoadException);
    }
    const struct {
        std::string content;
        LoadError::Code code;
        const char* place;
    } rows[] = {
        {"", LoadError::Code::kNotADictionary, ": not"},
        {"\x7F"
         "ELF\0\0\0\1"s,
         LoadError::Code::kNotADictionary, ": neither"},
        {"\x1F\x8B\x08", LoadError::Code::kNotADictionary, ":1: no entry can be read: bytes"},
        {"\xFF\xFE\0\0a\0\0\0"s, LoadError::Code::kNotADictionary, ":1: no entry can be read: a"},
        {"Wordlex B", LoadError::Code::kCutShort, ": byte 9: the file ends"},
        {"\"$$$/A=a\"\r\n\r\n  \"$/B=b\"", LoadError::Code::kMalformed, ":3:4: an entry"},
        {kLittleFile.substr(0, 90), LoadError::Code::kCutShort, ": byte 87: the file ends"},
        {kLittleFile.substr(0, 30), LoadError::Code::kCutShort, ": byte 29: the file ends"},
        {File("03 00 00", "", ""), LoadError::Code::kUnsupportedVersion, ": byte 21: unknown"},
        {kVersion15File.substr(0, 60), LoadError::Code::kCutShort, ": byte 58: the file ends"},
        {File(
             "02 07 00 00", kLittleLocale,
             "00000000 'Y' 01000000 01000000 00000000 01000000 00000000 02000000 0100 00000000 0000"
             "'k' 00000000"),
         LoadError::Code::kMalformed, ": byte 59: a key is outside"},
    };
    for (const auto& row : rows) {
        const LoadResult loaded = Catalog::TryLoad(folder.Write("t.dat", row.content));
        ASSERT_FALSE(loaded.Ok()) << row.place;
        EXPECT_EQ(row.code, loaded.Error().code) << row.place;
        EXPECT_EQ(name + row.place,
                  loaded.Error().Message().substr(0, name.size() + std::string(row.place).size()));
    }
    EXPECT_TRUE(Catalog::TryLoad(BytesOf("\n$x=y")).Error().Message().starts_with("2:1: an"));
}

TEST(Catalog, ReportsTheLinesOfWhichItLosesSomething) {
    const auto warnings = [](const std::string& text) {
        std::string places;
        const Catalog catalog = Catalog::Load(BytesOf(text));
        for (const lexon::LoadWarning& warning : catalog.Warnings())
            places += std::to_string(warning.line) + ":" + std::to_string(warning.column) + " ";
        return places;
    };
    EXPECT_EQ("", warnings("\"$$$/A=a\" // comment\r\n\r\n# comment\n\"$$$/B=b"));
    EXPECT_EQ("1:0 3:0 ", warnings("\"A=1\"\r\n\"B=\"\r\n\"A=2\"\r\n\"A=3\"\r\n"));
    EXPECT_EQ("2:8 ", warnings("a=b\n\"A=Say \"hello\"!\""));
    EXPECT_EQ("2:0 3:0 ", warnings("\"a=b\"\n\xFF\n\0c=d"s));
    EXPECT_EQ("1:1 2:0 ", warnings("\xFF\xFE\x41\x01=\0b"s));
}

TEST(Chain, AsksTheCatalogsInOrder) {
    const std::string available[] = {"en", "de", "pt_PT", "pt", "fr", "pt_BR"};
    const std::string preferred[] = {"pt-BR", "fr_CA"};
    EXPECT_EQ((std::vector<std::string>{"pt_BR", "pt", "pt_PT", "fr", "en"}),
              Chain::Order(available, "en", preferred));
    Chain chain;
    chain.Append("pt_BR", Catalog::Load(BytesOf("/A=brasil")));
    chain.Append("pt", Catalog::Load(BytesOf("/A=portugal\n/B=pt")));
    EXPECT_EQ(u"brasil", chain.Text("$$$/A=x"));
    ASSERT_TRUE(chain.Find("/B").has_value());
    EXPECT_EQ("pt", chain.Find("/B")->link->language);
    EXPECT_EQ(u"x", chain.Text("$$$/C=x"));
    EXPECT_EQ("x", chain.TextUtf8("$$$/C=x"));
}

// Eight threads look up while one reloads: each sees one of the two contents, whole.
TEST(CatalogThreads, ReadWhileOneReloads) {
    const TemporaryFolder folder;
    const std::string contents[] = {Indexed(ImageOf("/A=one\n/B=one")), "/A=two\n/B=two"};
    const auto write = [&](const std::string& content) {
        std::filesystem::rename(folder.Write("new", content), folder / "t.dat");
    };
    write(contents[0]);
    lexon::ReloadingCatalog reloading(folder / "t.dat");
    const Catalog first = reloading.Current();
    std::atomic<bool> done = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i) {
        readers.emplace_back([&] {
            while (!done) {
                const Catalog current = reloading.Current();
                const auto text = current.Find("$$$/A=x");
                EXPECT_TRUE(text.has_value() && text == current.Find("/B"));
                EXPECT_EQ(u"d", current.Text("$$$/C=d"));
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        write(contents[static_cast<unsigned>(i) % 2]);
        EXPECT_FALSE(reloading.Reload().has_value());
    }
    write("\"$broken\"");
    EXPECT_EQ(LoadError::Code::kMalformed, reloading.Reload().value().code);
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(u"two", reloading.Current().Find("/A"));
    EXPECT_EQ(u"one", first.Find("/A"));
}

// Eight threads, one of which makes the index meanwhile.
TEST(CatalogThreads, LookUpWhileTheIndexIsMade) {
    const std::string image = ImageOf(ManyLines(400));
    Dictionary engine = Engine(image);
    const Catalog catalog = Catalog::Load(BytesOf(image));
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i) {
        readers.emplace_back([&] {
            for (std::uint32_t id = 0; id < 300; ++id)
                EXPECT_EQ(id, catalog.IdOf(catalog.KeyOf(id).value()));
        });
    }
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ("", Difference(catalog, engine));
}

TEST(CatalogThreads, WatcherReloadsWhenTheFileIsSaved) {
    const TemporaryFolder folder;
    lexon::ReloadingCatalog reloading(folder.Write("t.txt", "/A=one"));
    std::atomic<int> good = 0;
    std::atomic<int> bad = 0;
    const lexon::Watcher watcher(
        reloading, [&](const LoadError* error) { ++(error == nullptr ? good : bad); });
    const auto wait = [](const std::atomic<int>& count) {
        for (int i = 0; i < 1000 && count == 0; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return count.load();
    };
    folder.Write("other.txt", "/A=other");
    folder.Write("t.txt", "\"$broken\"");
    EXPECT_LE(1, wait(bad));
    EXPECT_EQ(u"one", reloading.Current().Find("/A"));
    std::filesystem::rename(folder.Write("new.txt", "/A=two"), folder / "t.txt");
    EXPECT_LE(1, wait(good));
    EXPECT_EQ(u"two", reloading.Current().Find("/A"));
}

}  // namespace
}  // namespace catalog_tests
