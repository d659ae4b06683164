#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include "tests/wordlex/Dictionaries.h"
#include "tests/wordlex/Images.h"
#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/HashTable.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using lexon::EndianT;
using lexon::SaveType;

// On disk or in saved settings of callers: never change.
static_assert(static_cast<int>(EndianT::kBig) == 0 && static_cast<int>(EndianT::kLittle) == 1 &&
              static_cast<int>(EndianT::kHost) == 2 && static_cast<int>(SaveType::kBinary) == 0 &&
              static_cast<int>(SaveType::kNothing) == 1 && static_cast<int>(SaveType::kText) == 2 &&
              static_cast<int>(SaveType::kBinaryNoKeys) == 3 && kHashBucketCount == 1021);

enum class Form { kMemory, kMemoryBorrowed, kStream };
constexpr Form kForms[] = {Form::kMemory, Form::kMemoryBorrowed, Form::kStream};

// A dictionary and the file that it read, as a heap copy of exactly its size. The copy outlives the
// dictionary, as borrowed keys require.
struct Loaded {
    Loaded(const std::string& file, Form form, const std::string& held = {})
        : image(new char[file.size()]), dictionary(new Dictionary) {
        if (!held.empty()) Load(*dictionary, held);
        std::memcpy(image.get(), file.data(), file.size());
        if (form == Form::kStream) {
            std::istringstream stream(file);
            dictionary->Read(&stream);
            readTo = stream.tellg();
        } else {
            Load(*dictionary, {image.get(), file.size()}, form == Form::kMemory);
        }
    }
    Dictionary* operator->() const { return dictionary.get(); }
    std::u16string operator[](const char* key) const { return Text(dictionary->Lookup(key, {})); }

    std::unique_ptr<char[]> image;
    std::unique_ptr<Dictionary> dictionary;
    std::streamoff readTo = 0;
};

TEST(BinaryFormat, EveryVersionIsRead) {
    for (const auto& [line, file, keyed, compact] :
         std::initializer_list<std::tuple<int, std::string, bool, bool>>{
             {__LINE__, kLittleFile, true, true},
             {__LINE__, kBigFile, true, true},
             {__LINE__, kVersion20File, true, true},
             {__LINE__, kFileWithoutKeys, false, true},
             {__LINE__, kBigFileWithoutKeys, false, true},
             {__LINE__, kVersion15File, true, false},
             {__LINE__, kVersion15Utf8File, true, false},
             {__LINE__, kVersion10File, true, false}}) {
        for (const Form form : kForms) {
            SCOPED_TRACE(line);
            // Bytes after the image do not matter, and the stream stays before them.
            const Loaded loaded(file + "more", form);
            EXPECT_TRUE(loaded->IsValid());
            EXPECT_EQ(2U, loaded->NumKeys());
            EXPECT_EQ(keyed ? u"Hi" : u"", loaded["/A"]);
            EXPECT_EQ(keyed ? u"\u20AC" : u"", loaded["/B"]);
            EXPECT_EQ(compact ? u"\u20AC" : u"", Text(loaded->Lookup(1UL, nullptr)));
            EXPECT_EQ(compact ? u"B" : u"", Text(loaded->Accelerator(1U, nullptr)));
            EXPECT_EQ(u"", Text(loaded->Accelerator(0U, nullptr)));
            EXPECT_EQ(compact ? u"fr_FR" : u"", Text(loaded->Locale()));
            if (form == Form::kStream) {
                EXPECT_EQ(static_cast<std::streamoff>(file.size()), loaded.readTo);
            }
        }
    }
}

TEST(BinaryFormat, BothStoresWriteByteForByte) {
    Dictionary compact(true);
    EXPECT_EQ(File("02 07 00 00", "05000000 'en_US'",
                   "00000000 'N' 00000000 00000000 00000000 00000000 00000000"),
              Saved(compact, SaveType::kBinary, EndianT::kLittle));
    compact.Locale("fr_FR");
    Add(compact, "/A", u"Hi");
    Add(compact, "/B", u"\u20AC", u"B");
    EXPECT_EQ(kLittleFile, Saved(compact, SaveType::kBinary, EndianT::kLittle));
    EXPECT_EQ(kLittleFile, Saved(compact, SaveType::kBinary, EndianT::kHost));
    EXPECT_EQ(kBigFile, Saved(compact, SaveType::kBinary, EndianT::kBig));
    EXPECT_EQ(kFileWithoutKeys, Saved(compact, SaveType::kBinaryNoKeys, EndianT::kLittle));
    EXPECT_EQ(File("02 07 00 00", "05000000 'en_US'",
                   "00000000 'Y' 00000000 00000000 00000000 00000000 00000000 00000000"),
              Saved(Dictionary(), SaveType::kBinary, EndianT::kLittle));

    // The ids of a hash table follow its chains, newest first; "A" and " >" share a slot. Values
    // stay UTF-16 although an encoding is given, and the stream need not seek.
    const Loaded hash("A=Hi\n >=\n!=x", Form::kMemory);
    const lexon::EncodingInfo utf8{1};
    PipeBuffer pipe;
    std::ostream out(&pipe);
    EXPECT_EQ(34U + 12 + 4 + 6, hash->Serialize(out, SaveType::kBinary, &utf8, EndianT::kBig, 99));
    EXPECT_EQ(File("02 07 01 01", "00000005 'en_US'",
                   "00000000 'Y' 00000003 00000003 00000002 00000004 00000006"
                   "00000000 00000001 00000003 0001 0002 0001"
                   "00000000 00000002 00000002 0002 0000 0004"
                   "'! >A' 0078 0048 0069  0021 0041 00000001 00000002"
                   "00000000 00000001 00000002 00000000"),
              pipe.str());
    EXPECT_TRUE(out.good());
    out.setstate(std::ios_base::failbit);
    EXPECT_EQ(0U, wbfwrite_wbfid(out, wbfid, EndianT::kHost)) << "a failed stream takes nothing";
}

// Rows are "    OFFSET  bytes   meaning", all in hexadecimal, parts two or more blanks apart.
TEST(BinaryFormat, TheFileOfTheDocumentationIsWhatIsWritten) {
    std::ifstream page(PROJECT_DIR "/docs/binary-format.md");
    const std::regex row("    ([0-9a-f]{2})  ((?:[0-9a-f]{2}(?: {1,2}|$))+).*");
    std::string documented;
    std::smatch parts;
    for (std::string line; std::getline(page, line);) {
        if (!std::regex_match(line, parts, row)) continue;
        EXPECT_EQ(documented.size(), std::stoul(parts[1], nullptr, 16)) << line;
        documented += Hex(parts[2].str());
    }
    Dictionary dictionary(true);
    dictionary.Locale("fr_FR");
    Add(dictionary, "/Menu/Open", u"Ouvrir\u2026", u"O");
    Add(dictionary, "/OK", u"OK");
    EXPECT_EQ(Saved(dictionary, SaveType::kBinary, EndianT::kLittle), documented);
}

TEST(BinaryFormat, VersionAndLocaleDecideWhatIsTaken) {
    const std::string little(kLittleBody);
    for (const auto& [line, rest, valid, compact, locale] :
         std::initializer_list<std::tuple<int, std::string, bool, bool, std::u16string>>{
             {__LINE__, "02 7F 00 00 05000000 'fr_FR'" + little, true, true, u"fr_FR"},
             {__LINE__, "02 80 00 00 05000000 'fr_FR'" + little, false, false, u""},
             {__LINE__, "03 00 00 00 05000000 'fr_FR'" + little, false, false, u""},
             {__LINE__, "01 04 00 00000000", false, false, u""},
             {__LINE__, "01 05 00 00000000", true, false, u""},
             {__LINE__, "01 00 00 0000", true, false, u""},
             {__LINE__, "01 00 00 0100 FFFF 00000000", true, false, u""},
             {__LINE__, "02 07 00 02 05000000 'fr_FR'" + little, true, true, u"fr_FR"},
             {__LINE__, "02 07 00 FF 00000002 'fr'" + std::string(kBigBody), true, true, u"fr"},
             {__LINE__, "02 07 00 00 05000000 'fr_FR'", true, true, u"fr_FR"}}) {
        for (const Form form : kForms) {
            SCOPED_TRACE(line);
            const Loaded loaded(Hex(kMagic) + Hex(rest), form);
            EXPECT_EQ(valid, loaded->IsValid());
            EXPECT_EQ(compact, loaded->ReSetKeyEnumeration());
            EXPECT_EQ(locale, Text(loaded->Locale()));
        }
    }
}

TEST(BinaryFormat, Version1EntriesStandAheadOfTheirBucketUpToAFault) {
    // Two buckets of one slot ("ab" and 60 82 share 139).
    const std::string tables = Hex(kMagic) + Hex("01 05 00 00000002 00000004 00000006"
                                                 "00000002 00000002 00000002 00000002"
                                                 "00000002 00000002 008B 008B");
    const std::string entries = Hex("'ab' 0031 6082 0032 'ab' 0033");
    for (const Form form : kForms) {
        for (const auto& [length, digits] :
             {std::pair{12U, "3120"}, {11U, "120"}, {7U, "10"}, {3U, "0"}, {0U, "0"}}) {
            const Loaded loaded(tables + entries.substr(0, length), form, "ab=0");
            EXPECT_EQ(length == 12, loaded->IsValid());
            std::string found = Saved(*loaded.dictionary, SaveType::kText);
            std::erase_if(found, [](char c) { return c < '0' || c > '9'; });
            EXPECT_EQ(digits, found) << length;
        }
    }
}

TEST(BinaryFormat, Version1BodiesAreReadFromEitherSource) {
    const std::size_t head = Hex(kMagic).size() + 3;
    const std::string bodies[] = {kVersion10File.substr(head), kVersion15File.substr(head)};
    std::istringstream streams[] = {std::istringstream(bodies[0]), std::istringstream(bodies[1])};
    HashTable<ByteRunKey, DictionaryEntry> table;
    EXPECT_EQ(0, table.read_ver10(streams[0], 0));
    EXPECT_EQ(0U, table.read_ver15(streams[1], 0));
    EXPECT_EQ(0, table.read_ver10(bodies[0].data(), bodies[0].data() + bodies[0].size(), true, 0));
    EXPECT_EQ(0U,
              table.read_ver15(bodies[1].data(), bodies[1].data() + bodies[1].size(), false, 0));
    EXPECT_EQ(8, table.NumItems());
    EXPECT_EQ(-1, table.read_ver10(streams[0], 0)) << "the stream is at its end";
}

TEST(BinaryFormat, Version15ValuesKeepTheirUnits) {
    // A byte-order mark is data; so are lone surrogates. Half a unit is ignored.
    const std::string file = Hex(kMagic) + Hex("01 05 00 00000001 00000002 00000001 00000009 0041"
                                               "'A' FEFF FFFE D800 0041 00");
    EXPECT_EQ((std::u16string{0xFEFF, 0xFFFE, 0xD800, u'A'}), Loaded(file, Form::kMemory)["A"]);
}

TEST(ByteOrder, IsOneOfThreeValues) {
    for (const int value : {-1, 0, 1, 2, 3})
        EXPECT_EQ(value == 0, lexon_private::setEndian(static_cast<lexon::EndianT>(value)))
            << value;
}

}  // namespace
}  // namespace wordlex_tests
