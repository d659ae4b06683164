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
                "--disable=unbalanced-direction,replacement-character,trailing-ampersand "
                "--locale=xx --endian=" +
                name + " b -o c && wordlex compare a c"),
            (Outcome{0, ""}));
        EXPECT_TRUE(Read("a") == Read("c")) << name;
    }
}

}  // namespace
