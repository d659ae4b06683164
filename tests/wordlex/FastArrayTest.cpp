#include "wordlex/functionality/FastArray.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>

#include "tests/wordlex/Images.h"
#include "tests/wordlex/Text.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_literals;
using lexon::EndianT;
using lexon::SaveType;

constexpr std::uint32_t kNoId = FastArray::kNoId;
const std::string kBody = Hex(kLittleBody);

// A store with a reference to it, with texts for bytes.
class Store {
public:
    Store() : array(new FastArray) { array->AddReference(); }
    ~Store() { array->RemoveReference(); }
    FastArray* operator->() const { return array; }

    // With `valueBytes`, only so many bytes of the value.
    std::uint32_t Add(std::string_view key, std::u16string_view value,
                      std::u16string_view accelerator = {}, std::size_t valueBytes = ~0UL) const {
        return array->Add(
            Bytes(key), key.size(), reinterpret_cast<const unsigned char*>(value.data()),
            std::min(valueBytes, 2 * value.size()),
            reinterpret_cast<const unsigned char*>(accelerator.data()), 2 * accelerator.size());
    }
    std::uint32_t Find(std::string_view key) const { return array->FindId(Bytes(key), key.size()); }
    std::u16string Value(std::uint32_t id) const { return Text(array->GetValue(id)); }
    std::u16string operator[](std::string_view key) const { return Value(Find(key)); }
    std::u16string Accelerator(std::uint32_t id) const { return Text(array->Accelerator(id)); }
    std::string Key(std::uint32_t id) const {
        const std::unique_ptr<char[]> text(array->FindStringId(id));
        return text == nullptr ? "(null)" : text.get();
    }
    // The ids that an enumeration visits, valid or not.
    std::string Pass() const {
        std::string ids;
        while (array->HasMoreItem())
            ids += std::to_string(array->NextItem()) + ' ';
        return ids;
    }
    std::string Image(std::uint32_t idBase = 0, SaveType type = SaveType::kBinary) const {
        std::ostringstream out;
        const auto written = array->Serialize2(out, type, nullptr, EndianT::kLittle, idBase);
        EXPECT_EQ(type == SaveType::kText ? 0 : out.str().size(), written);
        return out.str();
    }
    ImageResult Load(const std::string& body) const {
        ImageReader reader(body.data(), body.data() + body.size(), EndianT::kLittle);
        return array->Load(reader);
    }

private:
    FastArray* array;
};

// A copy of `image` with some bytes changed.
std::string Patched(std::string image, std::size_t offset, std::string_view hex) {
    const std::string bytes = Hex(hex);
    return image.replace(offset, bytes.size(), bytes);
}

TEST(FastArray, StringsAreCutToSixteenBitsOfLength) {
    const Store store;
    const std::u16string longest(32767, u'x');
    EXPECT_EQ(longest, store.Value(store.Add("fits", longest)));
    for (const char* key : {"new", "new", "fits"}) {  // added, replaced, replaced by less
        EXPECT_EQ(u"xx", store.Value(store.Add(key, longest + u"xxx")));
    }
    EXPECT_EQ(u"x", store.Value(store.Add("odd", u"xyz", {}, 3)));
    const std::string key(65536 + 2, 'k');
    EXPECT_EQ("kk", store.Key(store.Add(key, u"v")));
    EXPECT_EQ(kNoId, store.Find(key));
}

TEST(FastArray, AcceleratorsBelongToTheirEntry) {
    const Store store;
    store.Add("a", u"1");
    store.Add("a", u"2", u"A");  // the first of its array
    store.Add("b", u"3", u"B");
    store.Add("c", u"4");
    store.Add("c", u"5", u"C");  // has none, while the array has some
    store.Add("b", u"6", u"longer");
    store.Add("a", u"7");
    const auto all = [&store] {
        std::u16string texts;
        for (std::uint32_t id = 0; id < 4; ++id)
            texts += store.Accelerator(id) + u'|';
        return texts;
    };
    EXPECT_EQ(u"A|longer|||", all());
    store->Remove(1);
    EXPECT_EQ(u"A||||", all());
    const Store loaded;
    loaded.Load(store.Image());
    loaded.Add("a", u"8", u"B");
    EXPECT_EQ(u"B", loaded.Accelerator(0));
}

TEST(FastArray, RemovedEntriesNeverMatch) {
    const Store store;
    store.Add("b", u"1");
    store.Add("\x1F\x1D", u"slot 0");
    store.Add("", u"");
    EXPECT_EQ(1U, store->Remove(1));
    for (const std::uint32_t id : {1U, 2U, 99U, kNoId})  // the empty key has no valid id
        EXPECT_EQ(kNoId, store->Remove(id));
    EXPECT_EQ(2U, store.Find("")) << "not the removed entry, which has no key either";
    EXPECT_EQ(2U, store.Add("", u"empty key"));
    EXPECT_EQ(kNoId, store.Find("\x1F\x1D"));
    EXPECT_EQ("", store.Key(1));
    EXPECT_EQ("(null)", store.Key(3));
    EXPECT_EQ(u"", store.Value(1));
    EXPECT_EQ(3U, store.Add("\x1F\x1D", u"again"));
    EXPECT_EQ("0 3 ", store.Pass());
    store->Remove(0);
    EXPECT_EQ("0 3 ", store.Pass()) << "the first one is not tested";
    EXPECT_TRUE(store->HasMoreItem() && store->HasMoreItem());
    store->RestartEnumeration();
    EXPECT_EQ("0 3 ", store.Pass());

    const Store loaded;
    const std::string image = store.Image();
    for (int time = 0; time < 2; ++time) {  // an image of known keys changes nothing
        EXPECT_EQ(ImageResult::kLoaded, loaded.Load(image));
        EXPECT_EQ(image, loaded.Image()) << "ids, removed entries and the empty key are kept";
        EXPECT_EQ(2U, loaded.Find(""));
        EXPECT_EQ(3U, loaded.Find("\x1F\x1D"));
        EXPECT_EQ(2U, loaded->LiveCount());
    }
}

TEST(FastArray, ArraysWithoutKeysHaveIdsAlone) {
    const Store store;
    store.Load(Hex(kBodyWithoutKeys));
    store.Add("/k", u"keyed", u"K");
    char buffer[8] = "?";
    EXPECT_FALSE(store->GetData(1, buffer, sizeof buffer));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ("(null)", store.Key(1));
    EXPECT_EQ(kNoId, store->Remove(1));
    EXPECT_TRUE(store->ValidId(1));
    EXPECT_EQ("H\0i\0\"\0\n\0"s + "\xAC\x20\"\0\n\0"s + "\"\0/\0k\0=\0k\0e\0y\0e\0d\0\"\0\n\0"s,
              store.Image(0, SaveType::kText));
    const Store keyed;
    EXPECT_EQ(ImageResult::kLoaded, keyed.Load(store.Image()));
    EXPECT_EQ(u"keyed", keyed["/k"]);
    EXPECT_EQ(3U, keyed->LiveCount());
    const Store unkeyed;
    unkeyed.Load(store.Image(7, SaveType::kBinaryNoKeys));
    EXPECT_EQ(u"Hi", unkeyed.Value(0));
    EXPECT_EQ(u"keyed", unkeyed.Value(2));
    EXPECT_EQ(u"K", unkeyed.Accelerator(2));
    EXPECT_EQ(Hex("07000000 'N'"), store.Image(7, SaveType::kBinaryNoKeys).substr(0, 5));
}

TEST(FastArrayLoad, IdBasesDecideBetweenMergingAndAppending) {
    struct Row {
        int line;
        std::uint32_t held;  // entries "/A", "/1", ... in the store
        std::string_view idBase;
        std::uint32_t live;
        std::uint32_t b;  // the id of "/B" then
        std::u16string_view valueOfA;
    };
    for (const Row& row :
         {Row{__LINE__, 0, "00000000", 2, 1, u"Hi"}, Row{__LINE__, 0, "05000000", 2, 1, u"Hi"},
          Row{__LINE__, 3, "00000000", 4, 4, u"Hi"}, Row{__LINE__, 3, "03000000", 5, 4, u"held"},
          Row{__LINE__, 3, "05000000", 3, kNoId, u"held"},
          Row{__LINE__, 100, "00000000", 101, 101, u"Hi"}}) {
        SCOPED_TRACE(row.line);
        const Store store;
        for (std::uint32_t i = 0; i < row.held; ++i)
            store.Add(i == 0 ? "/A" : "/" + std::to_string(i), u"held");
        const bool taken = row.b != kNoId;
        EXPECT_EQ(taken ? ImageResult::kLoaded : ImageResult::kRejected,
                  store.Load(Patched(kBody, 0, row.idBase)));
        EXPECT_EQ(row.live, store->LiveCount());
        EXPECT_EQ(0U, store.Find("/A"));
        EXPECT_EQ(row.valueOfA, store["/A"]);
        EXPECT_EQ(row.b, store.Find("/B"));
        EXPECT_EQ(taken ? u"B" : u"", store.Accelerator(row.b));
    }
}

TEST(FastArrayLoad, OverridingKeepsTheOldEntryAlone) {
    const Store store;
    store.Add("/A", u"a longer value");
    store.Add("/B", u"", u"old");
    store.Load(kBody);
    EXPECT_EQ(u"Hi", store["/A"]);
    EXPECT_EQ(u"\u20AC", store["/B"]);
    EXPECT_EQ(u"old", store.Accelerator(1)) << "the one of the new entry goes with it";
    EXPECT_EQ(2U, store.Add("/C", u"")) << "no id was used up";
    for (const std::size_t length : {1023U, 1024U}) {  // longer keys are not recognised
        const std::string key(length, 'k');
        const Store more;
        more.Add(key, u"new");
        const std::uint32_t held = store.Add(key, u"old");
        store.Load(more.Image());
        EXPECT_EQ(held, store.Find(key));
        EXPECT_EQ(length < 1024 ? u"new" : u"old", store[key]);
    }
}

// An image may contain what no writer makes, as long as it stays inside its tables.
TEST(FastArrayLoad, OddImagesAreTakenSoThatNothingWraps) {
    struct Row {
        int line;
        std::size_t offset;
        std::string_view patch;
        std::uint32_t live;    // in an empty store
        std::uint32_t merged;  // in one that has "/A" and "/Z"
    };
    for (const Row& row : {Row{__LINE__, 9, "00000000", 0, 2},  // live count
                           Row{__LINE__, 9, "01000000", 2, 3}, Row{__LINE__, 9, "FFFFFFFF", 2, 3},
                           Row{__LINE__, 4, "00", 2, 3},                  // keyed flag
                           Row{__LINE__, 61, "2402", 2, 3},               // "/B" in another slot
                           Row{__LINE__, 71, "00000000 00000000", 2, 3},  // "/A" twice
                           Row{__LINE__, 37, "00000000 00000000", 2, 3},  // values share bytes
                           Row{__LINE__, 33, "0200 0000", 2, 3},          // empty keys
                           Row{__LINE__, 33, "0000 0000", 2, 4}}) {
        SCOPED_TRACE(row.line);
        const std::string image = Patched(kBody, row.offset, row.patch);
        const Store empty;
        EXPECT_EQ(ImageResult::kLoaded, empty.Load(image));
        EXPECT_EQ(row.live, empty->LiveCount());
        const std::u16string other = empty["/B"];
        empty.Add("/A", u"?");
        EXPECT_EQ(other, empty["/B"]);
        const Store store;
        store.Add("/A", u"old");
        store.Add("/Z", u"kept");
        EXPECT_EQ(ImageResult::kLoaded, store.Load(image));
        EXPECT_EQ(row.merged, store->LiveCount());
        EXPECT_EQ(0U, store.Find("/A"));
        EXPECT_EQ(u"kept", store["/Z"]);
        const Store reloaded;
        EXPECT_EQ(ImageResult::kLoaded, reloaded.Load(store.Image()));
        EXPECT_EQ(row.merged, reloaded->LiveCount());
    }
    // Values at odd offsets are aligned; of three bytes the last one is dropped.
    const Store odd;
    odd.Load(
        Hex("00000000 'N' 02000000 02000000 00000000 09000000"
            "01000000 06000000 0400 0300  FF 4800 6900 FF 4142 43  00000000"));
    EXPECT_EQ(u"Hi", odd.Value(0));
    EXPECT_EQ(u"\u4241", odd.Value(1));
    EXPECT_EQ(Hex("06000000 00000000 04000000 0400 0200 4800 6900 4142 00000000"),
              odd.Image().substr(17));
}

TEST(FastArrayLoad, FaultsAreFoundWhereTheyAre) {
    struct Row {
        int line;
        std::size_t offset;
        std::string_view patch;
        ImageFault fault;
        std::uint64_t faultOffset;
    };
    for (const Row& row : {Row{__LINE__, 0, "05000000", ImageFault::kIdBaseConflict, 0},
                           Row{__LINE__, 5, "FFFFFFFF", ImageFault::kCutShort, 25},  // entries
                           Row{__LINE__, 29, "03000000", ImageFault::kKeyOutside, 29},
                           Row{__LINE__, 33, "0400", ImageFault::kNone, 0},  // two keys share bytes
                           Row{__LINE__, 37, "FFFFFFFF", ImageFault::kValueOutside, 37},
                           Row{__LINE__, 47, "0300", ImageFault::kValueOutside, 41},
                           Row{__LINE__, 21, "FFFFFFFF", ImageFault::kCutShort, 53},  // its area
                           Row{__LINE__, 59, "FD03", ImageFault::kSlotOutside, 59},   // 1021
                           Row{__LINE__, 59, "FC03", ImageFault::kNone, 0},           // 1020
                           Row{__LINE__, 63, "FFFFFFFF FFFFFFFF", ImageFault::kCutShort, 71},
                           Row{__LINE__, 75, "02000000", ImageFault::kIdOutside, 75},
                           Row{__LINE__, 79, "FFFFFFFF", ImageFault::kCutShort, 87},
                           Row{__LINE__, 87, "02000000", ImageFault::kIdOutside, 87},
                           Row{__LINE__, 91, "01000000", ImageFault::kAcceleratorOutside, 91},
                           Row{__LINE__, 83, "FFFFFFFF", ImageFault::kCutShort, 97}}) {
        SCOPED_TRACE(row.line);
        const std::string image = Patched(kBody, row.offset, row.patch);
        std::istringstream stream(image);
        ImageReader memory(image.data(), image.data() + image.size(), EndianT::kHost);
        ImageReader streamed(stream, EndianT::kHost);
        for (ImageReader* reader : {&memory, &streamed}) {
            const Store store;
            store.Add("/A", u"old");
            const ImageResult result = store->Load(*reader);
            EXPECT_EQ(row.fault, reader->Fault()) << Describe(reader->Fault());
            EXPECT_EQ(row.faultOffset, reader->FaultOffset());
            EXPECT_EQ(row.fault == ImageFault::kNone, Describe(reader->Fault()) == "no fault"s);
            const bool malformed =
                row.fault == ImageFault::kSlotOutside || row.fault == ImageFault::kIdOutside;
            EXPECT_EQ(malformed, result == ImageResult::kMalformed);
            EXPECT_EQ(row.fault == ImageFault::kNone, result == ImageResult::kLoaded);
        }
    }
}

TEST(FastArrayLoad, ReadTakesEitherSource) {
    std::istringstream stream(kBody);
    const Store streamed;
    EXPECT_EQ(0U, streamed->Read(stream, 0, EndianT::kLittle));
    const Store loaded;
    EXPECT_EQ(0U,
              loaded->Read(kBody.data(), kBody.data() + kBody.size(), true, 0, EndianT::kLittle));
    EXPECT_EQ(kBody, streamed.Image());
    EXPECT_EQ(kBody, loaded.Image());
}

}  // namespace
}  // namespace wordlex_tests
