#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <sstream>

#include "tests/wordlex/Images.h"
#include "tests/wordlex/Text.h"
#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/Dictionary.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_literals;

// How a dictionary is read; every image is a heap copy of exactly its size.
enum class Form { kMemory, kMemoryBorrowed, kStream };
constexpr Form kForms[] = {Form::kMemory, Form::kMemoryBorrowed, Form::kStream};

// The image outlives the dictionary, as borrowed keys require.
struct Loaded {
    Loaded(const std::string& file, Form form, std::unique_ptr<Dictionary> into)
        : image(new char[file.size()]), dictionary(std::move(into)) {
        std::memcpy(image.get(), file.data(), file.size());
        if (form == Form::kStream) {
            std::istringstream stream(file);
            dictionary->Read(&stream);
            readTo = stream ? static_cast<long>(stream.tellg()) : -1;
        } else {
            dictionary->Read(image.get(), static_cast<int>(file.size()), form == Form::kMemory);
        }
    }
    std::unique_ptr<char[]> image;
    std::unique_ptr<Dictionary> dictionary;
    long readTo = -1;
};

std::u16string Lookup(Dictionary& dictionary, const char* key) {
    return Text(dictionary.Lookup(key, nullptr));
}

unsigned long Add(Dictionary& dictionary, const char* key, std::u16string_view value,
                  std::u16string_view accelerator = {}) {
    const auto v = Units(value);
    const auto a = Units(accelerator);
    return dictionary.Add(key, v.data(), v.size(), nullptr, a.data(), a.size());
}

std::string Saved(const Dictionary& dictionary, lexon::SaveType type, lexon::EndianT order) {
    std::ostringstream out;
    dictionary.Serialize(out, type, nullptr, order, 0);
    return out.str();
}

TEST(BinaryFormat, NumbersOnDiskArePinned) {
    EXPECT_EQ(1021U, kHashBucketCount);
    EXPECT_STREQ("Wordlex Binary Format", wbfidstr);
    EXPECT_STREQ("en_US", defaultLocale);
    EXPECT_EQ('Y', kKeyed);
    EXPECT_EQ('N', kNotKeyed);
    EXPECT_EQ(0, static_cast<int>(lexon::EndianT::kBig));
    EXPECT_EQ(1, static_cast<int>(lexon::EndianT::kLittle));
    EXPECT_EQ(2, static_cast<int>(lexon::EndianT::kHost));
    EXPECT_EQ(0, static_cast<int>(lexon::SaveType::kBinary));
    EXPECT_EQ(1, static_cast<int>(lexon::SaveType::kNothing));
    EXPECT_EQ(2, static_cast<int>(lexon::SaveType::kText));
    EXPECT_EQ(3, static_cast<int>(lexon::SaveType::kBinaryNoKeys));
}

TEST(BinaryFormat, HeadersAreWrittenByteForByte) {
    struct Row {
        int line;
        bool encoded;
        lexon::EndianT order;
        const char* locale;
        std::string_view rest;
    };
    for (const Row& row : {
             Row{__LINE__, false, lexon::EndianT::kLittle, nullptr, "02 07 00 00 05000000 'en_US'"},
             Row{__LINE__, false, lexon::EndianT::kHost, "ja", "02 07 00 00 02000000 'ja'"},
             Row{__LINE__, true, lexon::EndianT::kBig, nullptr, "02 07 01 01 00000005 'en_US'"},
             Row{__LINE__, true, lexon::EndianT::kBig, "", "02 07 01 01 00000000"},
         }) {
        SCOPED_TRACE(row.line);
        std::ostringstream out;
        const std::uint32_t written = WriteBinaryHeader(out, row.encoded, row.order, row.locale);
        EXPECT_EQ(Hex(kMagic) + Hex(row.rest), out.str());
        EXPECT_EQ(out.str().size(), written);
    }
    std::ostringstream failed;
    failed.setstate(std::ios_base::failbit);
    EXPECT_EQ(0U, WriteBinaryHeader(failed, false, lexon::EndianT::kHost, nullptr));
    std::ostream nowhere(nullptr);
    nowhere.clear(std::ios_base::goodbit | nowhere.rdstate());
    EXPECT_EQ(0U, wbfwrite_deflocale(nowhere, lexon::EndianT::kHost));
}

TEST(BinaryFormat, EveryVersionIsRead) {
    struct Row {
        int line;
        const std::string& file;
        bool keyed;
        bool compact;
    };
    for (const Row& row :
         {Row{__LINE__, kLittleFile, true, true}, Row{__LINE__, kBigFile, true, true},
          Row{__LINE__, kVersion20File, true, true}, Row{__LINE__, kFileWithoutKeys, false, true},
          Row{__LINE__, kVersion15File, true, false},
          Row{__LINE__, kVersion15Utf8File, true, false},
          Row{__LINE__, kVersion10File, true, false}}) {
        for (const Form form : kForms) {
            SCOPED_TRACE(row.line);
            // What follows the image is nobody's business, and the stream stays in front of it.
            const Loaded loaded(row.file + "more", form, std::make_unique<Dictionary>());
            Dictionary& dictionary = *loaded.dictionary;
            EXPECT_TRUE(dictionary.IsValid());
            EXPECT_EQ(2U, dictionary.NumKeys());
            if (row.keyed) {
                EXPECT_EQ(u"Hi", Lookup(dictionary, "/A"));
                EXPECT_EQ(u"\u20AC", Lookup(dictionary, "/B"));
            }
            if (row.compact) {
                EXPECT_EQ(u"\u20AC", Text(dictionary.Lookup(1UL, nullptr)));
                EXPECT_EQ(u"B", Text(dictionary.Accelerator(1U, nullptr)));
                EXPECT_EQ(u"", Text(dictionary.Accelerator(0U, nullptr)));
                EXPECT_EQ(u"fr_FR", Text(dictionary.Locale()));
            }
            if (form == Form::kStream) {
                EXPECT_EQ(static_cast<long>(row.file.size()), loaded.readTo);
            }
        }
    }
}

// A stream buffer that cannot seek, as a pipe.
struct Pipe : std::stringbuf {
    using std::stringbuf::stringbuf;
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
        return pos_type(off_type(-1));
    }
    pos_type seekpos(pos_type, std::ios_base::openmode) override { return pos_type(off_type(-1)); }
};

TEST(BinaryFormat, BothStoresWriteByteForByte) {
    Dictionary compact(true);
    compact.Locale("fr_FR");
    EXPECT_EQ(File("02 07 00 00", kLittleLocale,
                   "00000000 'N' 00000000 00000000 00000000 00000000 00000000"),
              Saved(compact, lexon::SaveType::kBinary, lexon::EndianT::kLittle));
    Add(compact, "/A", u"Hi");
    Add(compact, "/B", u"\u20AC", u"B");
    EXPECT_EQ(kLittleFile, Saved(compact, lexon::SaveType::kBinary, lexon::EndianT::kLittle));
    EXPECT_EQ(kLittleFile, Saved(compact, lexon::SaveType::kBinary, lexon::EndianT::kHost));
    EXPECT_EQ(kBigFile, Saved(compact, lexon::SaveType::kBinary, lexon::EndianT::kBig));
    EXPECT_EQ(kFileWithoutKeys,
              Saved(compact, lexon::SaveType::kBinaryNoKeys, lexon::EndianT::kLittle));

    // The ids of a hash table follow its chains, newest first; "A" and " >" share a slot.
    Dictionary hash;
    hash.Read("A=Hi\n >=\n!=x", 13, true);
    Pipe pipe(std::ios_base::out);
    std::ostream out(&pipe);
    const lexon::EncodingInfo utf8{1};
    EXPECT_EQ(34U + 12 + 4 + 6,
              hash.Serialize(out, lexon::SaveType::kBinary, &utf8, lexon::EndianT::kBig, 99));
    EXPECT_EQ(File("02 07 01 01", "00000005 'en_US'",
                   "00000000 'Y' 00000003 00000003 00000002 00000004 00000006"
                   "00000000 00000001 00000003 0001 0002 0001"
                   "00000000 00000002 00000002 0002 0000 0004"
                   "'! >A' 0078 0048 0069  0021 0041 00000001 00000002"
                   "00000000 00000001 00000002 00000000"),
              pipe.str());
    EXPECT_TRUE(out.good());
}

TEST(BinaryFormat, VersionsAndLocalesDecideWhatIsTaken) {
    struct Row {
        int line;
        std::string file;
        bool memoryValid;
        bool compact;
        std::u16string_view locale;
    };
    const auto body = [](std::string_view head, std::string_view rest) {
        return Hex(kMagic) + Hex(head) + Hex(rest);
    };
    for (const Row& row : {
             Row{__LINE__, File("02 7F 00 00", kLittleLocale, kLittleBody), true, true, u"fr_FR"},
             Row{__LINE__, File("02 80 00 00", kLittleLocale, kLittleBody), false, false, u""},
             Row{__LINE__, File("03 00 00 00", kLittleLocale, kLittleBody), false, false, u""},
             Row{__LINE__, File("01 01 00 00", "", "00000000"), false, false, u""},
             Row{__LINE__, File("01 04 00 00", "", "00000000"), false, false, u""},
             Row{__LINE__, body("01 05 00", "00000000"), true, false, u""},
             Row{__LINE__, body("01 00 00", "0000"), true, false, u""},
             Row{__LINE__, body("01 00 00", "0100 FFFF 00000000"), true, false, u""},
             Row{__LINE__, File("02 07 00 02", kLittleLocale, kLittleBody), true, true, u"fr_FR"},
             Row{__LINE__, File("02 07 00 FF", "00000005 'fr_FR'", kBigBody), true, true, u"fr_FR"},
             Row{__LINE__, body("02 07 00 00", "000000"), false, false, u""},
             Row{__LINE__, body("02 07 00 00", "05000000"), true, true, u""},  // no locale, no body
             Row{__LINE__, body("02 07 00 00", "05000000 'fr_F'"), false, false, u""},
             Row{__LINE__, body("02 07 00 00", "FFFFFFFF 'fr_FR'"), false, false, u""},
             Row{__LINE__, body("02 07 00 00", "05000000 'fr_FR'"), true, true, u"fr_FR"},
         }) {
        for (const Form form : kForms) {
            SCOPED_TRACE(row.line);
            const Loaded loaded(row.file, form, std::make_unique<Dictionary>());
            EXPECT_EQ(row.memoryValid, loaded.dictionary->IsValid());
            EXPECT_EQ(row.compact, loaded.dictionary->ReSetKeyEnumeration());
            EXPECT_EQ(row.locale, Text(loaded.dictionary->Locale()));
        }
    }
}

TEST(BinaryFormat, Version1BodiesChainAheadOfTheirBucketAndStayUpToAFault) {
    // Two buckets of one slot ("ab" and 60 82 share 139), the entries of the first in file order.
    const std::string head = Hex(kMagic) + Hex("01 05 00 00000002 00000004 00000006"
                                               "00000002 00000002 00000002 00000002"
                                               "00000002 00000002 008B 008B");
    const std::string entries = Hex("'ab' 0031 6082 0032 'ab' 0033");
    const auto textOf = [](const Dictionary& dictionary) {
        std::ostringstream out;
        dictionary.Serialize(out, false, nullptr);
        std::string digits;
        for (const char c : out.str())
            if (c >= '0' && c <= '9') digits += c;
        return digits;
    };
    for (const Form form : kForms) {
        for (const auto& [length, digits] :
             {std::pair{12U, "3120"}, {11U, "120"}, {7U, "10"}, {3U, "0"}, {0U, "0"}}) {
            auto held = std::make_unique<Dictionary>();
            held->Read("ab=0", 4, true);
            const Loaded loaded(head + entries.substr(0, length), form, std::move(held));
            EXPECT_EQ(length == 12, loaded.dictionary->IsValid());
            EXPECT_EQ(digits, textOf(*loaded.dictionary)) << length;
        }
    }
}

TEST(BinaryFormat, Version1TablesAreChecked) {
    struct Row {
        int line;
        std::string_view body;
        std::string_view head = "01 05 00";
    };
    for (const Row& row : {
             Row{__LINE__, "00000001 00000001 00000000 0000"},  // half an entry
             Row{__LINE__, "00000002 00000002 00000000 00000000 00000000 0000 0000"},  // decreases
             Row{__LINE__, "00000001 00000000 03FD"},                                  // slot 1021
             Row{__LINE__, "FFFFFFFF 00000000"},
             Row{__LINE__, "00000001 FFFFFFFE 0000"},
             Row{__LINE__, "00000001 00000002 FFFFFFFF 00000000 0000 00"},
             Row{__LINE__, "0200 0000 05000000 0000 04000000", "01 00 00"},  // decreases
             Row{__LINE__, "0200 FD03 00000000 0000 00000000", "01 00 00"},  // slot 1021
             Row{__LINE__, "FFFF 0000", "01 00 00"},
             Row{__LINE__, "0200 0000 00000000 0000 10000000 FFFFFFFFFFFFFFFF 00", "01 00 00"},
             Row{__LINE__, "0200 0000 00000000 0000 10000000 0000000000000000 0300000000000000 00",
                 "01 00 00"},
         }) {
        for (const Form form : kForms) {
            SCOPED_TRACE(row.line);
            const Loaded loaded(Hex(kMagic) + Hex(row.head) + Hex(row.body), form,
                                std::make_unique<Dictionary>());
            EXPECT_FALSE(loaded.dictionary->IsValid());
            EXPECT_EQ(0U, loaded.dictionary->NumKeys());
        }
    }
}

TEST(BinaryFormat, Version15ValuesKeepTheirUnits) {
    // A byte-order mark is data; so are lone surrogates, and half a unit counts nothing.
    const std::string file = Hex(kMagic) + Hex("01 05 00 00000001 00000002 00000001 00000009 0041"
                                               "'A' FEFF FFFE D800 0041 00");
    const Loaded loaded(file, Form::kMemory, std::make_unique<Dictionary>());
    EXPECT_EQ((std::u16string{0xFEFF, 0xFFFE, 0xD800, u'A'}), Lookup(*loaded.dictionary, "A"));
}

// What a damaged file leaves: valid or not, and what was there before untouched and usable.
class Damage {
public:
    Damage(bool compactFile) : compact(compactFile) {}

    // Whether a fresh dictionary is valid; the same in every form.
    bool ValidAfter(const std::string& file) const {
        const Outcome first = Load(file, kForms[0]);
        for (const Form form : {kForms[1], kForms[2]}) {
            const Outcome other = Load(file, form);
            EXPECT_EQ(first.valid, other.valid);
            EXPECT_EQ(first.text, other.text);
        }
        return first.valid;
    }
    // The same for a file of which nothing is to be taken.
    bool ValidAndAsBefore(const std::string& file) const {
        const Outcome outcome = Load(file, Form::kMemory);
        EXPECT_EQ(Load("x", Form::kMemory).text, outcome.text);
        return ValidAfter(file);
    }

private:
    struct Outcome {
        bool valid;
        std::string text;
    };

    std::unique_ptr<Dictionary> Held() const {
        auto held = std::make_unique<Dictionary>(compact);
        held->Read("/A=old\n/Z=kept", 14, true);
        return held;
    }
    Outcome Load(const std::string& file, Form form) const {
        const Loaded fresh(file, form, std::make_unique<Dictionary>());
        const Loaded filled(file, form, Held());
        Dictionary& dictionary = *filled.dictionary;
        EXPECT_EQ(u"kept", Lookup(dictionary, "/Z"));
        std::ostringstream text;
        dictionary.Serialize(text, false, nullptr);
        if (compact) {
            const unsigned long before = dictionary.NumKeys();
            const unsigned long id = Add(dictionary, "/new", u"new");
            EXPECT_EQ(id, dictionary.GetNumericId("/new"));
            EXPECT_EQ(before + 1, dictionary.NumKeys());
            EXPECT_EQ(u"new", Text(dictionary.Lookup(id, nullptr)));
        }
        return {fresh.dictionary->IsValid(), text.str()};
    }

    bool compact;
};

// One letter a byte of the file: what flipping a bit of it gives. 'v': always valid, 'x': never,
// '?': that depends on the bit.
std::string OutcomesOfBitFlips(const std::string& file, const Damage& damage) {
    std::string outcomes;
    for (std::size_t at = 0; at < file.size(); ++at) {
        int valid = 0;
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = file;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            valid += damage.ValidAfter(flipped) ? 1 : 0;
        }
        outcomes += valid == 8 ? 'v' : valid == 0 ? 'x' : '?';
    }
    return outcomes;
}

struct DamageCase {
    int line;
    const std::string& file;
    std::size_t bodyAt;  // a file that is cut behind this stays valid
    std::string bitFlips;
};

constexpr std::size_t kNever = ~std::size_t{0};
const std::string kMagicFlips(21, 'v');  // become a text

TEST(BinaryFormatDamage, EveryPrefixAndEveryBit) {
    for (const DamageCase& row : std::initializer_list<DamageCase>{
             {__LINE__, kLittleFile, 34,
              "x?v? ?xxx vvvvv vvvv v ?vvv vvvv vvvv ?vvv ?vvv"  // header to area sizes
              "?xxx ?xxx ?x ?x ?xxx ?xxx ?x ?x vvvv vvvvvv"      // entries
              "v? v? ?vvv ?vvv ?xxx ?xxx"                        // hash index
              "?vvv ?vvv ?xxx xxxx ?x vv"},                      // accelerators
             {__LINE__, kBigFile, 34,
              "x?v? xxx? vvvvv vvvv v vvv? vvvv vvvv vvv? vvv?"
              "xxx? xxx? x? x? xxx? xxx? x? x? vvvv vvvvvv"
              "?v ?v vvv? vvv? xxx? xxx?"
              "vvv? vvv? xxx? xxxx x? vv"},
             {__LINE__, kFileWithoutKeys, 34,
              "x?v? ?xxx vvvvv vvvv x ?vvv vvvv vvvv ?vvv"
              "?xxx ?xxx ?x ?x vvvvvv ?vvv ?vvv ?xxx xxxx ?x vv"},
             {__LINE__, kVersion15File, kNever,
              "xxv xxx? xxx? xxxx xxx? xxx? xxx? xxx? ?v ?v vvvvvv vvvv"},
             {__LINE__, kVersion15Utf8File, kNever,
              "xxv xxx? xxx? xxxx xxx? xxx? xxx? xxx? ?v ?v vvvv vvvvv"},
             {__LINE__, kVersion10File, kNever,
              "xxv ?x v? ?xxx v? ?xxx vv ?xxx"
              "xxxxxxxx vv xxxxxxxx vvvv xxxxxxxx vv xxxxxxxx vv"}}) {
        SCOPED_TRACE(row.line);
        const bool compact = row.bodyAt != kNever;
        const Damage damage(compact);
        for (std::size_t length = 21; length < row.file.size(); ++length) {
            const std::string prefix = row.file.substr(0, length);
            const bool valid =
                compact ? damage.ValidAndAsBefore(prefix) : damage.ValidAfter(prefix);
            // Right behind the locale's length there may be no locale.
            EXPECT_EQ(length >= row.bodyAt || (compact && length == 29), valid) << length;
        }
        std::string expected = row.bitFlips;
        std::erase(expected, ' ');
        EXPECT_EQ(kMagicFlips + expected, OutcomesOfBitFlips(row.file, damage));
    }
}

}  // namespace
}  // namespace wordlex_tests
