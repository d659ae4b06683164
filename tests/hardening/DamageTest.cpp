// Binary files cut, with bits flipped and with fields at their extremes, and texts and files made
// to be costly. The tests state what becomes of a dictionary, and bound its cost.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <set>

#include "tests/hardening/Memory.h"
#include "tests/hardening/Snapshot.h"
#include "tests/hardening/Streams.h"
#include "tests/wordlex/Images.h"
#include "tests/wordlex/Text.h"
#include "tests/wordlex/catalog/SameAnswers.h"
#include "wordlex/functionality/Dictionary.h"

namespace hardening {
namespace {

using lexon_private::Dictionary;
using namespace std::string_literals;
using namespace wordlex_tests;

enum class Form {
    kMemory,
    kMemoryBorrowed,
    kStream,
    kBlindStream
};  // the last: the end is unknown

void LoadAs(Form form, Dictionary& dictionary, std::string_view image) {
    if (form == Form::kMemory || form == Form::kMemoryBorrowed)
        return Load(dictionary, image, form == Form::kMemory);
    FaultySource source(image, image.size(), Fault::kEnds,
                        form == Form::kStream ? Seeks::kAnywhere : Seeks::kNotToTheEnd);
    std::istream stream(&source);
    dictionary.Read(&stream);
}

// One more entry is found, and found again in a saved file.
void CheckUsable(Dictionary& dictionary) {
    const unsigned long count = dictionary.NumKeys();
    const unsigned short value[] = {u'v'};
    const unsigned long id = dictionary.Add("/new", value, 1, nullptr, nullptr, 0);
    EXPECT_EQ(id, dictionary.GetNumericId("/new"));
    const bool compact = dictionary.ReSetKeyEnumeration();
    EXPECT_EQ(compact, id != ~0UL);
    if (!compact) Load(dictionary, "/new=v");
    EXPECT_EQ(count + 1, dictionary.NumKeys());
    EXPECT_EQ(u"v", Text(dictionary.Lookup("/new", nullptr)));
    Dictionary reloaded;
    Load(reloaded, Saved(dictionary, lexon::SaveType::kBinary));
    EXPECT_EQ(u"v", Text(reloaded.Lookup("/new", nullptr)));
}

// The state of a fresh dictionary after the load: 'v' valid and filled, 'r' valid although the
// image was refused or contains nothing, 'x' invalid. Every other dictionary, in every form, has
// the same state. It keeps its content, stays usable, and takes no more memory than the file's size
// justifies.
char OutcomeOf(const std::string& file) {
    constexpr std::uint64_t kMostBytesPerByte = 40;
    constexpr std::uint64_t kMostBytes =
        150'000;  // buffers, and the first steps on a stream of unknown end
    char outcome = 0;
    EXPECT_EQ("", catalog_tests::DifferenceOf(file));
    for (const bool compact : {false, true}) {
        bool bringsNothing = false;
        for (const bool filled : {false, true}) {
            std::string first;
            for (const Form form :
                 {Form::kMemory, Form::kMemoryBorrowed, Form::kStream, Form::kBlindStream}) {
                std::vector<char> image(file.begin(), file.end());  // exact size, for sanitizers
                Dictionary dictionary(compact);
                if (filled) Load(dictionary, "/A=old\n/Z=kept");
                const std::string before = Content(dictionary);
                const std::uint64_t allocated = AllocatedBytes();
                LoadAs(form, dictionary, {image.data(), image.size()});
                EXPECT_GE(kMostBytes + kMostBytesPerByte * file.size(),
                          AllocatedBytes() - allocated);

                const std::string after = Snapshot(dictionary);
                if (form == Form::kMemory) first = after;
                EXPECT_EQ(first, after);
                const bool valid = dictionary.IsValid();
                const bool empty = dictionary.NumKeys() == 0;
                if (outcome == 0) outcome = !valid ? 'x' : empty ? 'r' : 'v';
                // An id base in conflict hides other faults.
                EXPECT_EQ(outcome != 'x' || (valid && filled && compact), valid);
                if (!filled) bringsNothing = empty;
                if (bringsNothing && (compact || !valid)) {
                    if (valid) dictionary.Locale("en_US");  // not that of the file
                    EXPECT_EQ(before, Content(dictionary));
                }
                if (filled && (compact || !dictionary.ReSetKeyEnumeration())) {
                    EXPECT_EQ(u"kept", Text(dictionary.Lookup("/Z", nullptr)));
                }
                if (form == Form::kMemory) CheckUsable(dictionary);
            }
        }
    }
    return outcome;
}

constexpr std::size_t kMagicSize = 21;
const std::string kLittleFlips =
    "?xxx vvvvv vvvv v rrrr ?vvv rrrr ?rrr ?rrr"   // locale to area sizes
    "?rrr ?rrr ?r ?r ?rrr ?rrr ?r ?r vvvv vvvvvv"  // entries
    "v? v? ?rrr ?rrr ?xxx ?xxx"                    // hash index
    "?rrr rrrr ?xxx rrrr ?r vv";                   // accelerators

// One letter for each byte after the magic: the outcome of flipping a bit of it, '?' when that
// depends on the bit. A version 2 file that is cut in its body or right after the length of its
// locale is refused; of other files every part is invalid.
struct GoldenFile {
    int line;
    const std::string& content;
    bool bigEndian;
    std::size_t body;  // where the body of version 2 begins
    std::string flips;
};
const GoldenFile kFiles[] = {
    {__LINE__, kLittleFile, false, 34, "x?v?" + kLittleFlips},
    {__LINE__, kVersion20File, false, 33, "x?v" + kLittleFlips},
    {__LINE__, kBigFile, true, 34,
     "x?v? xxx? vvvvv vvvv v rrrr vvv? rrrr rrr? rrr?"
     "rrr? rrr? r? r? rrr? rrr? r? r? vvvv vvvvvv"
     "?v ?v rrr? rrr? xxx? xxx?"
     "rrr? rrrr xxx? rrrr r? vv"},
    {__LINE__, kFileWithoutKeys, false, 34,
     "x?v? ?xxx vvvvv vvvv r rrrr ?vvv vvvv ?rrr"
     "?rrr ?rrr ?r ?r vvvvvv ?rrr rrrr ?xxx rrrr ?r vv"},
    {__LINE__, kBigFileWithoutKeys, true, 34,
     "x?v? xxx? vvvvv vvvv r rrrr vvv? vvvv rrr?"
     "rrr? rrr? r? r? vvvvvv rrr? rrrr xxx? rrrr r? vv"},
    {__LINE__, kVersion15File, true, 0, "xxv xxx? xxx? xxxx xxx? xxx? xxx? xxx? ?v ?v vvvvvv vvvv"},
    {__LINE__, kVersion15Utf8File, true, 0,
     "xxv xxx? xxx? xxxx xxx? xxx? xxx? xxx? ?v ?v vvvv vvvvv"},
    {__LINE__, kVersion10File, false, 0,
     "xxv ?x v? ?xxx v? ?xxx vv ?xxx"
     "xxxxxxxx vv xxxxxxxx vvvv xxxxxxxx vv xxxxxxxx vv"},
};

TEST(DamagedFile, HasAStatedOutcomeForEveryLengthAndBit) {
    for (const auto& [line, file, bigEndian, body, flips] : kFiles) {
        SCOPED_TRACE(line);
        std::string expected(kMagicSize, '?');  // a flip makes it a text, or invalid bytes
        std::ranges::remove_copy(flips, std::back_inserter(expected), ' ');
        std::string outcomes;
        for (std::size_t at = 0; at < file.size(); ++at) {
            std::set<char> ofByte;
            for (int bit = 0; bit < 8; ++bit) {
                std::string flipped = file;
                flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
                ofByte.insert(OutcomeOf(flipped));
            }
            outcomes += ofByte.size() == 1 ? *ofByte.begin() : '?';
            if (at < kMagicSize) continue;
            const bool refused = body != 0 && (at >= body || at == body - 5);
            EXPECT_EQ(refused ? 'r' : 'x', OutcomeOf(file.substr(0, at))) << at;
        }
        EXPECT_EQ(expected, outcomes);
    }
}

TEST(DamagedFile, IsReadAlikeWithEveryFieldAtItsExtremes) {
    constexpr std::uint32_t kEntries = 2;
    for (const auto& [line, file, bigEndian, body, flips] : kFiles) {
        std::string outcomes;
        std::ranges::remove_copy(flips, std::back_inserter(outcomes), ' ');
        for (std::size_t at = kMagicSize; at + 2 <= file.size(); ++at) {
            // At every possible place of a field: only the low half, and the whole value.
            for (const std::size_t width : {sizeof(std::uint16_t), sizeof(std::uint32_t)}) {
                if (at + width > file.size()) continue;
                const auto place = [&, big = bigEndian](std::size_t byte) {
                    return at + (big ? width - 1 - byte : byte);
                };
                std::uint32_t own = 0;
                for (std::size_t i = width; i-- > 0;)
                    own = own << 8 | static_cast<unsigned char>(file[place(i)]);
                std::set<std::uint32_t> values;
                for (const std::uint32_t value :
                     {0U, 1U, own - 1, own + 1, kEntries - 1, kEntries + 1, 1020U, 1021U,
                      0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
                    values.insert(width == sizeof value ? value : value & 0xFFFF);
                for (const std::uint32_t value : values) {
                    SCOPED_TRACE(testing::Message()
                                 << value << " at " << at << " of the file of line " << line);
                    std::string changed = file;
                    for (std::size_t i = 0; i < width; ++i)
                        changed[place(i)] = static_cast<char>(value >> 8 * i);
                    const char outcome = OutcomeOf(changed);
                    // If no bit of the high byte is accepted, no large value is.
                    if (value < 0x7FFFFFFF) continue;
                    const char ofHighByte = outcomes[place(width - 1) - kMagicSize];
                    EXPECT_TRUE(outcome != 'v' || ofHighByte == 'v' || ofHighByte == '?');
                }
            }
        }
    }
}

// So many lines of four bytes, with keys of one bucket.
std::string KeysOfOneBucket(std::size_t count) {
    std::string lines;
    for (unsigned head = 0; lines.size() < 5 * count; ++head) {
        std::string key;
        for (const unsigned shift : {14U, 7U, 0U})
            key += static_cast<char>(head >> shift & 0x7F);
        const unsigned long last =
            lexon_private::kHashBucketCount - lexon_private::HashFunc(Bytes(key + '\0'), 4);
        key += static_cast<char>(last);
        if (last <= 0x7F && key.find_first_of("\n\r\"$=\0"s) == std::string::npos)
            lines += key + '\n';
    }
    return lines;
}

TEST(CostlyInput, OfOneMegabyteTakesBoundedTimeAndMemory) {
    constexpr std::clock_t kMostSeconds = 30;  // with sanitizers, too; chains would take minutes
    constexpr std::uint64_t kMostBytesPerByte = 200;
    Dictionary oneSlot(true);
    Load(oneSlot, KeysOfOneBucket(50'000));
    const struct {
        std::string content;
        unsigned times;
        unsigned long keys[2];  // in either store
    } inputs[] = {
        {KeysOfOneBucket(209'000), 1, {209'000, 209'000}},
        {KeysOfOneBucket(65'536), 2, {65'536, 65'536}},
        {std::string(1'000'000, '\n'), 1, {0, 0}},
        {File("01 05 00", "", "00000001 0003D000") + std::string(0xF4002, '\0'),  // empty entries
         1,
         {124'928, 0}},
        {Saved(oneSlot, lexon::SaveType::kBinary), 2, {50'000, 50'000}},
    };
    for (const auto& [content, times, keys] : inputs) {
        const std::clock_t start = std::clock();
        const std::uint64_t before = AllocatedBytes();
        const auto catalog = lexon::Catalog::TryLoad(std::as_bytes(std::span(content)));
        if (catalog.Ok()) catalog_tests::MakeIndexed(*catalog);
        EXPECT_GE(kMostSeconds * CLOCKS_PER_SEC, std::clock() - start);
        EXPECT_GE(kMostBytesPerByte * content.size(), AllocatedBytes() - before);
        for (const bool compact : {false, true}) {
            SCOPED_TRACE(content.size());
            Dictionary dictionary(compact);
            const std::uint64_t allocated = AllocatedBytes();
            const std::clock_t begin = std::clock();
            for (unsigned i = 0; i < times; ++i)
                Load(dictionary, content);
            EXPECT_GE(kMostSeconds * CLOCKS_PER_SEC, std::clock() - begin);
            EXPECT_GE(kMostBytesPerByte * content.size() * times, AllocatedBytes() - allocated);
            EXPECT_EQ(keys[compact], dictionary.NumKeys());
            if (dictionary.NumKeys() == 0 || content.starts_with(Hex(kMagic))) continue;
            const std::string saved = Saved(dictionary, lexon::SaveType::kBinary);
            Dictionary reloaded;
            Load(reloaded, saved);
            EXPECT_TRUE(saved == Saved(reloaded, lexon::SaveType::kBinary));
        }
    }
}

// A version 2 image of those keys, in slot 0, whose values are all the same bytes.
std::string WithSharedValue(const std::string& lines, std::size_t valueSize, bool sharesKeys) {
    constexpr std::size_t kKeySize = 4;
    const std::size_t count = lines.size() / (kKeySize + 1);
    std::string image = kLittleFile.substr(0, 34);
    const auto put = [&image](std::size_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i)
            image += static_cast<char>(value >> 8 * i);
    };
    put(0, 4);
    image += 'Y';
    for (const std::size_t field : {count, count, 1UL, count * kKeySize, valueSize})
        put(field, 4);
    for (std::size_t i = 0; i < count; ++i)
        put(sharesKeys ? 0 : kKeySize * i, 4);
    for (std::size_t i = 0; i < count; ++i)
        put(sharesKeys ? 0xFFFF : kKeySize, 2);
    image.append(4 * count, '\0');
    for (std::size_t i = 0; i < count; ++i)
        put(valueSize, 2);
    for (std::size_t i = 0; i < count; ++i)
        image.append(lines, i * (kKeySize + 1), kKeySize);
    image.append(valueSize, 'v');
    put(0, 2);
    put(count, 4);
    for (std::size_t i = 0; i < count; ++i)
        put(i, 4);
    put(0, 4);
    return image;
}

TEST(CostlyInput, StringsMayShareBytesOnlyAsFarAsHonestFilesDo) {
    const std::string lines = KeysOfOneBucket(20'000);
    struct Row {
        int line;
        std::size_t valueSize;
        bool sharesKeys;
        bool taken;
    };
    for (const Row& row : {Row{__LINE__, 4, false, true}, Row{__LINE__, 0xFFFE, false, false},
                           Row{__LINE__, 4, true, false}}) {
        SCOPED_TRACE(row.line);
        const std::string image = WithSharedValue(lines, row.valueSize, row.sharesKeys);
        Dictionary dictionary(true);
        Load(dictionary, lines);
        const std::uint64_t allocated = AllocatedBytes();
        Load(dictionary, image);
        EXPECT_GE(20 * image.size(), AllocatedBytes() - allocated);
        EXPECT_TRUE(dictionary.IsValid());
        EXPECT_EQ(20'000U, dictionary.NumKeys());
        EXPECT_EQ(row.taken ? u"\x7676\x7676" : u"",
                  Text(dictionary.Lookup(lines.substr(0, 4).c_str(), nullptr)));
    }
}

TEST(CostlyInput, AnEmptyDictionaryCostsSomeHundredBytes) {
    const std::uint64_t allocated = AllocatedBytes();
    const Dictionary dictionary;
    EXPECT_GE(500U, sizeof dictionary + AllocatedBytes() - allocated);
}

}  // namespace
}  // namespace hardening
