// compile and dump: each undoes the other.
#include <random>
#include <sstream>
#include <vector>

#include "tests/tools/CommandTest.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/FastArray.h"

namespace {

using namespace std::string_literals;
using lexon_private::FastArray;

class RoundTripTest : public CommandTest {
protected:
    // A binary file with the given keys and values.
    class Image {
    public:
        Image() { store->AddReference(); }
        ~Image() { store->RemoveReference(); }
        Image(const Image&) = delete;
        Image& operator=(const Image&) = delete;
        void Add(const std::string& key, const std::u16string& value) {
            store->Add(reinterpret_cast<const unsigned char*>(key.data()), key.size(),
                       reinterpret_cast<const unsigned char*>(value.data()), 2 * value.size(),
                       nullptr, 0);
        }
        std::string Bytes(lexon::EndianT order) const {
            std::ostringstream out;
            lexon_private::WriteBinaryHeader(out, false, order, "xx");
            store->Serialize2(out, lexon::SaveType::kBinary, nullptr, order, 0);
            return out.str();
        }

    private:
        FastArray* store = new FastArray;
    };
};

TEST_F(RoundTripTest, OfGeneratedDictionariesInBothByteOrders) {
    Image image;
    for (unsigned first = 0; first < 0x10000; first += 0x100) {  // every unit, in runs and alone
        std::u16string run;
        for (unsigned unit = first; unit < first + 0x100; ++unit)
            run += static_cast<char16_t>(unit);
        image.Add("run" + std::to_string(first), run);
    }
    for (unsigned byte = 0; byte < 0x100; ++byte) {
        const std::string key(1, static_cast<char>(byte));
        image.Add(key, {static_cast<char16_t>(byte)});
        image.Add("k" + key + "y", {u'v', static_cast<char16_t>(byte)});
        image.Add("$" + key, {});
    }
    image.Add("", u"of the empty key");
    std::mt19937 random(8);  // fixed: a failure can be run again
    static constexpr char16_t kPieces[] =
        u"\\\\^^##{{}}\"\"nrtbeQ[]U+0041amp19 \r\n\t\b=\u2028\xD83D\xDE00";
    std::uniform_int_distribution<std::size_t> piece(0, std::size(kPieces) - 1);  // and the NUL
    for (int i = 0; i < 3000; ++i) {
        std::u16string value;
        for (int length = i % 12; length > 0; --length)
            value += kPieces[piece(random)];
        std::string key = std::to_string(i);
        for (const char16_t unit : value)
            key += static_cast<char>(unit);
        image.Add(key, value);
    }
    for (const auto order : {lexon::EndianT::kLittle, lexon::EndianT::kBig}) {
        const std::string name = order == lexon::EndianT::kBig ? "big" : "little";
        Write("a", image.Bytes(order));
        ASSERT_EQ(
            Run("wordlex dump a -o b && wordlex compile --disable=wide-key --disable=empty-key "
                "--disable=unknown-escape --disable=lone-surrogate --disable=blank-at-equals "
                "--locale=xx --endian=" +
                name + " b -o c && wordlex compare a c"),
            (Outcome{0, ""}));
        EXPECT_TRUE(Read("a") == Read("c")) << name;
    }
}

TEST_F(RoundTripTest, OfShippedDictionaries) {
    EXPECT_EQ(
        Run("for f in '" PROJECT_DIR "'/app/dictionaries/[!C]*.txt; do for e in little big; do\n"
            "wordlex compile $f -o a --endian=$e && wordlex compile $f -o again --endian=$e &&\n"
            "cmp a again && wordlex dump a > b && wordlex check b --disable=same-accelerator &&\n"
            "wordlex compile - -o - --endian=$e < b | cmp - a && wordlex compare $f a || echo $f\n"
            "done; done; wc -c < a | grep -q ... && echo done"),
        (Outcome{0, "done\n"}));
}

TEST_F(RoundTripTest, OfAVersion1File) {
    // 1.5: one bucket, slot 65 of "A", the key twice; the first one counts
    Write("a",
          "Wordlex Binary Format\1\5\0\0\0\0\1\0\0\0\4\0\0\0\1\0\0\0\4\0\0\0\1\0\0\0\2\0\x41"s
          "A\0b\0^A\0x"s);
    const std::string compile = "wordlex compile --disable=unreachable-entry ";
    EXPECT_EQ(Run(compile + "a -o b && wordlex dump b --header && wordlex compare a b"),
              (Outcome{0,
                       "Wordlex Binary Format 2.7, little-endian, locale en_US, 1 entries: "
                       "\"$$$A=b^^\"\n"}));
    EXPECT_EQ(Run(compile + "b a -o c").exitCode, 2);
    EXPECT_EQ(Run("wordlex compile a -o c"),
              (Outcome{1, "",
                       "a: error: an entry with the key \"A\" that a look-up of the key does "
                       "not find [unreachable-entry]\n"}));
}

TEST_F(RoundTripTest, CompileMergesAsTheApplicationWould) {
    Write("a", "\"A=1\"\n\"B=1\"");
    Write("b", "\"C=2\"\n\"B=2\"");
    EXPECT_EQ(Run("wordlex compile a b -o c && wordlex dump c && wordlex compile c a -o d && "
                  "wordlex dump --sort d"),
              (Outcome{0,
                       "\"$$$A=1\"\n\"$$$B=2\"\n\"$$$C=2\"\n"
                       "\"$$$A=1\"\n\"$$$B=1\"\n\"$$$C=2\"\n"}));
    Write("bad", "\"$A=1\"");
    const struct {
        int line;
        std::string arguments;
        int exitCode;
        std::string told;
    } rows[] = {
        {__LINE__, "a bad", 1, "bad:1:2: error: "},
        {__LINE__, "a a", 0, ""},
        {__LINE__, "a c", 2, "wordlex: c: the application would no longer see the entries of a"},
        {__LINE__, "c based", 2, "wordlex: based: its id base does not follow"},
    };
    Run("wordlex compile a -o based --id-base=7");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        Write("out", "before");
        const Outcome outcome = Run("wordlex compile -o out " + row.arguments);
        EXPECT_EQ(outcome.exitCode, row.exitCode);
        EXPECT_TRUE(outcome.err.starts_with(row.told)) << outcome;
        EXPECT_EQ(Read("out") == "before", row.exitCode != 0);
    }
}

TEST_F(RoundTripTest, DumpTellsWhatTextCannotHold) {
    Write("a", "\"A=\\t#{U+D800}\xC3\xA9\"\n\"B=2\"");
    EXPECT_EQ(Run("wordlex dump a --format=json --header").out,
              "{\"form\":\"text, 8-bit\",\"locale\":\"\",\"entries\":2}\n"
              "{\"key\":\"A\",\"id\":0,\"value\":\"\\t\\ud800\xC3\xA9\"}\n"
              "{\"key\":\"B\",\"id\":1,\"value\":\"2\"}\n");
    EXPECT_EQ(
        Run("wordlex compile a -o b --no-keys --disable=lone-surrogate && wordlex dump b "
            "--format=json && "
            "wordlex dump b"),
        (Outcome{2, "{\"id\":0,\"value\":\"\\t\\ud800\xC3\xA9\"}\n{\"id\":1,\"value\":\"2\"}\n",
                 "wordlex: b: 2 entries without keys, which a text dictionary cannot hold; "
                 "use --format=json\n"}));
}

}  // namespace
