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

constexpr std::uint32_t kNoId = FastArray::kNoId;

// A held store, with texts for bytes.
class Store {
public:
    Store() : array(new FastArray) { array->AddReference(); }
    ~Store() { array->RemoveReference(); }
    FastArray* operator->() const { return array; }

    std::uint32_t Add(std::string_view key, std::u16string_view value,
                      std::u16string_view accelerator = {}) const {
        return AddBytes(key, value, 2 * value.size(), accelerator);
    }
    std::uint32_t AddBytes(std::string_view key, std::u16string_view value, std::size_t valueBytes,
                           std::u16string_view accelerator = {}) const {
        return array->Add(Bytes(key), key.size(),
                          reinterpret_cast<const unsigned char*>(value.data()), valueBytes,
                          reinterpret_cast<const unsigned char*>(accelerator.data()),
                          2 * accelerator.size());
    }
    std::uint32_t Find(std::string_view key) const { return array->FindId(Bytes(key), key.size()); }
    std::u16string Value(std::uint32_t id) const { return Text(array->GetValue(id)); }
    std::u16string operator[](std::string_view key) const { return Value(Find(key)); }
    std::u16string Accelerator(std::uint32_t id) const { return Text(array->Accelerator(id)); }
    std::string Key(std::uint32_t id) const {
        const std::unique_ptr<char[]> text(array->FindStringId(id));
        return text == nullptr ? "(null)" : text.get();
    }

    std::string Image(std::uint32_t idBase = 0,
                      lexon::SaveType type = lexon::SaveType::kBinary) const {
        std::ostringstream out;
        const std::uint32_t written =
            array->Serialize2(out, type, nullptr, lexon::EndianT::kLittle, idBase);
        EXPECT_EQ(out.str().size(), written);
        return out.str();
    }
    ImageResult Load(const std::string& body) const {
        ImageReader reader(body.data(), body.data() + body.size(), lexon::EndianT::kLittle);
        return array->Load(reader);
    }
    // Ids that an enumeration passes, valid or not.
    std::string Pass() const {
        std::string ids;
        while (array->HasMoreItem())
            ids += std::to_string(array->NextItem()) + ' ';
        return ids;
    }

private:
    FastArray* array;
};

const std::string kBody = Hex(kLittleBody);

std::string Patched(std::string image, std::size_t offset, std::string_view hex) {
    const std::string bytes = Hex(hex);
    return image.replace(offset, bytes.size(), bytes);
}

TEST(FastArray, AddedKeysGetTheNextIdAndKnownOnesANewValue) {
    const Store store;
    EXPECT_EQ(kNoId, store.Find("/a"));
    for (std::uint32_t i = 0; i < 250; ++i) {  // more than two arrays of added entries
        EXPECT_EQ(i, store.Add("/" + std::to_string(i), u"value"));
    }
    for (const std::u16string_view value :
         {u"longer value", u"short", u"exact", u"", u"from none"}) {
        for (const std::uint32_t id : {0U, 99U, 100U, 249U}) {
            EXPECT_EQ(id, store.Add("/" + std::to_string(id), value));
            EXPECT_EQ(value, store.Value(id));
            EXPECT_EQ("/" + std::to_string(id), store.Key(id));
        }
    }
    EXPECT_EQ(u"value", store["/98"]);
    EXPECT_EQ(250U, store->LiveCount());
    EXPECT_EQ(250U, store.Add("/new", u""));
    EXPECT_EQ(u"", store["/new"]);
}

TEST(FastArray, StringsAreCutToSixteenBitsOfLength) {
    const Store store;
    const std::u16string longest(32767, u'x');
    EXPECT_EQ(longest, store.Value(store.Add("fits", longest)));
    for (const char* key : {"new", "new", "fits"}) {  // added, replaced, replaced by less
        EXPECT_EQ(u"xx", store.Value(store.Add(key, longest + u"xxx")));
    }
    EXPECT_EQ(u"x", store.Value(store.AddBytes("odd", u"xyz", 3)));
    const std::string key(65536 + 2, 'k');
    EXPECT_EQ("kk", store.Key(store.Add(key, u"v")));
    EXPECT_EQ(kNoId, store.Find(key)) << "cannot be told from the two bytes that are left";
}

TEST(FastArray, AcceleratorsBelongToTheirEntry) {
    const Store store;
    EXPECT_EQ(0U, store.Add("a", u"1"));
    EXPECT_EQ(0U, store.Add("a", u"2", u"A"));  // the first of its array
    EXPECT_EQ(1U, store.Add("b", u"3", u"B"));
    EXPECT_EQ(2U, store.Add("c", u"4"));
    store.Add("c", u"5", u"C");  // has none, and the array has some
    store.Add("b", u"6", u"longer");
    store.Add("a", u"7");
    EXPECT_EQ(u"A", store.Accelerator(0));
    EXPECT_EQ(u"longer", store.Accelerator(1));
    EXPECT_EQ(u"", store.Accelerator(2));
    EXPECT_EQ(u"", store.Accelerator(3));
    store->Remove(1);
    EXPECT_EQ(u"", store.Accelerator(1));
    const Store loaded;
    loaded.Load(store.Image());
    EXPECT_EQ(u"A", loaded.Accelerator(0));
    loaded.Add("a", u"8", u"B");
    EXPECT_EQ(u"B", loaded.Accelerator(0));
    EXPECT_EQ(u"", loaded.Accelerator(1));
}

TEST(FastArray, RemovedEntriesNeverMatch) {
    const Store store;
    store.Add("b", u"1");
    store.Add("a", u"2");
    store.Add("\x1F\x1D", u"slot 0");
    store.Add("", u"");
    EXPECT_EQ(2U, store->Remove(2));
    EXPECT_EQ(kNoId, store->Remove(2));
    EXPECT_EQ(kNoId, store->Remove(99));
    EXPECT_EQ(kNoId, store->Remove(kNoId));
    EXPECT_EQ(3U, store.Find("")) << "not the removed entry, which has no key either";
    EXPECT_EQ(3U, store.Add("", u"empty key"));
    EXPECT_EQ(kNoId, store->Remove(3)) << "the id of the empty key is never valid";
    EXPECT_EQ(kNoId, store.Find("\x1F\x1D"));
    EXPECT_EQ("", store.Key(2));
    EXPECT_EQ("(null)", store.Key(4));
    EXPECT_EQ(u"", store.Value(2));
    EXPECT_FALSE(store->ValidId(2));
    EXPECT_EQ(3U, store->LiveCount());
    EXPECT_EQ(4U, store.Add("\x1F\x1D", u"again"));
    const Store loaded;
    const std::string image = store.Image();
    EXPECT_EQ(ImageResult::kLoaded, loaded.Load(image));
    EXPECT_EQ(image, loaded.Image()) << "ids, removed entries and the empty key are kept";
    EXPECT_EQ(3U, loaded.Find(""));
    EXPECT_EQ(4U, loaded.Find("\x1F\x1D"));
    EXPECT_EQ(4U, loaded->LiveCount());
    EXPECT_EQ(ImageResult::kLoaded, loaded.Load(image));
    EXPECT_EQ(image, loaded.Image()) << "an image of known keys changes nothing";
}

TEST(FastArray, KeysAreCopiedOutWhenTheyFit) {
    const Store store;
    store.Add("abc", u"");
    store.Load(Hex(kBodyWithoutKeys));
    char buffer[4] = "???";
    EXPECT_TRUE(store->GetData(0, buffer, 4));
    EXPECT_STREQ("abc", buffer);
    for (const auto& [id, size] : {std::pair{0U, 3U}, {1U, 4U}, {9U, 4U}}) {
        std::memset(buffer, '?', sizeof buffer);
        EXPECT_FALSE(store->GetData(id, buffer, size));
        EXPECT_STREQ("", buffer);
    }
    EXPECT_FALSE(store->GetData(0, buffer, 0));
    EXPECT_EQ("(null)", store.Key(1)) << "an entry without keys has no text";
    EXPECT_EQ(u"Hi", store.Value(1));
    EXPECT_EQ(kNoId, store->Remove(1)) << "nor can it be removed";
    EXPECT_TRUE(store->ValidId(2));
}

TEST(FastArray, EnumerationSkipsWhatWasRemoved) {
    const Store store;
    EXPECT_EQ("", store.Pass());
    for (const char* key : {"a", "b", "c", "d"})
        store.Add(key, u"");
    store->Remove(0);
    store->Remove(2);
    EXPECT_EQ("0 1 3 ", store.Pass()) << "the first one is not tested";
    EXPECT_EQ("0 1 3 ", store.Pass());
    EXPECT_TRUE(store->HasMoreItem() && store->HasMoreItem());
    store->RestartEnumeration();
    EXPECT_EQ("0 1 3 ", store.Pass());
}

TEST(FastArrayLoad, IdBasesDecideBetweenMergingAndAppending) {
    struct Row {
        int line;
        std::uint32_t held;  // entries "/A", "/1", ... that the store has
        std::string_view idBase;
        ImageResult result;
        std::uint32_t live;
        std::uint32_t a;  // ids then
        std::uint32_t b;
        std::u16string_view valueOfA;
    };
    for (const Row& row : {
             Row{__LINE__, 0, "00000000", ImageResult::kLoaded, 2, 0, 1, u"Hi"},
             Row{__LINE__, 0, "05000000", ImageResult::kLoaded, 2, 0, 1, u"Hi"},
             Row{__LINE__, 3, "00000000", ImageResult::kLoaded, 4, 0, 4, u"Hi"},
             Row{__LINE__, 3, "03000000", ImageResult::kLoaded, 5, 0, 4, u"held"},
             Row{__LINE__, 3, "05000000", ImageResult::kRejected, 3, 0, kNoId, u"held"},
             Row{__LINE__, 100, "00000000", ImageResult::kLoaded, 101, 0, 101, u"Hi"},
         }) {
        SCOPED_TRACE(row.line);
        const Store store;
        for (std::uint32_t i = 0; i < row.held; ++i)
            store.Add(i == 0 ? "/A" : "/" + std::to_string(i), u"held");
        EXPECT_EQ(row.result, store.Load(Patched(kBody, 0, row.idBase)));
        EXPECT_EQ(row.live, store->LiveCount());
        EXPECT_EQ(row.a, store.Find("/A"));
        EXPECT_EQ(row.b, store.Find("/B"));
        EXPECT_EQ(row.valueOfA, store["/A"]);
        EXPECT_EQ(row.b == kNoId ? u"" : u"B", store.Accelerator(row.b));
        // Whatever was open, added entries and further images follow.
        const std::uint32_t next = row.b == kNoId ? row.held : row.b + 1;
        EXPECT_EQ(next, store.Add("/next", u"next"));
        const Store more;
        more.Add("/more", u"more");
        EXPECT_EQ(ImageResult::kLoaded, store.Load(more.Image(next + 1)));
        EXPECT_EQ(next + 1, store.Find("/more"));
        EXPECT_EQ(next + 2, store.Add("/last", u"last"));
        EXPECT_EQ(u"next", store["/next"]);
        EXPECT_EQ(u"more", store["/more"]);
    }
}

TEST(FastArrayLoad, OverridingKeepsTheOldEntryAlone) {
    const Store store;
    store.Add("/A", u"a longer value");
    store.Add("/B", u"", u"old");
    EXPECT_EQ(ImageResult::kLoaded, store.Load(kBody));
    EXPECT_EQ(u"Hi", store["/A"]);
    EXPECT_EQ(u"\u20AC", store["/B"]);
    EXPECT_EQ(u"old", store.Accelerator(1)) << "the one of the new entry goes with it";
    EXPECT_EQ("0 1 ", store.Pass());
    EXPECT_EQ(2U, store.Add("/C", u"")) << "no id was used up";

    const Store part;
    part.Add("/A", u"old");
    part.Load(kBody);
    EXPECT_EQ("0 2 ", part.Pass());
    EXPECT_EQ("", part.Key(1));
    const Store reloaded;
    reloaded.Load(part.Image());
    EXPECT_EQ(part.Image(), reloaded.Image());
    EXPECT_EQ(2U, reloaded.Find("/B"));
}

TEST(FastArrayLoad, KeysThatAreTooLongToMergeAreAppended) {
    for (const std::size_t length : {1023U, 1024U}) {
        const Store store;
        const std::string key(length, 'k');
        store.Add(key, u"old");
        const Store more;
        more.Add(key, u"new");
        store.Load(more.Image());
        EXPECT_EQ(0U, store.Find(key));
        EXPECT_EQ(length < 1024 ? u"new" : u"old", store[key]);
        EXPECT_EQ(length < 1024 ? 1U : 2U, store->LiveCount());
    }
}

// An image may say what no writer does, as long as it stays inside its tables.
TEST(FastArrayLoad, OddImagesAreTakenSoThatNothingWraps) {
    struct Row {
        int line;
        std::size_t offset;
        std::string_view patch;
        std::uint32_t live;        // in an empty store
        std::uint32_t liveMerged;  // in one that holds "/A" and "/Z"
    };
    for (const Row& row : {
             Row{__LINE__, 9, "00000000", 0, 2},  // live count
             Row{__LINE__, 9, "01000000", 2, 3},
             Row{__LINE__, 9, "FFFFFFFF", 2, 3},
             Row{__LINE__, 4, "00", 2, 3},                  // keyed flag
             Row{__LINE__, 61, "2402", 2, 3},               // "/B" in the slot of "/A"
             Row{__LINE__, 71, "00000000 00000000", 2, 3},  // "/A" twice
             Row{__LINE__, 63, "02000000 00000000", 2, 3},  // both in the slot of "/A"
             Row{__LINE__, 33, "0200 0000", 2, 3},          // an empty key
             Row{__LINE__, 33, "0000 0000", 2, 4},
             Row{__LINE__, 33, "0000", 2, 4},
         }) {
        SCOPED_TRACE(row.line);
        const std::string image = Patched(kBody, row.offset, row.patch);
        const Store empty;
        EXPECT_EQ(ImageResult::kLoaded, empty.Load(image));
        EXPECT_EQ(row.live, empty->LiveCount());
        const Store store;
        store.Add("/A", u"old");
        store.Add("/Z", u"kept");
        EXPECT_EQ(ImageResult::kLoaded, store.Load(image));
        EXPECT_EQ(row.liveMerged, store->LiveCount());
        EXPECT_EQ(0U, store.Find("/A"));
        EXPECT_EQ(u"kept", store["/Z"]);
        EXPECT_EQ(kNoId, store.Find("/C"));
        const Store reloaded;
        EXPECT_EQ(ImageResult::kLoaded, reloaded.Load(store.Image()));
        EXPECT_EQ(store->LiveCount(), reloaded->LiveCount());
    }
}

TEST(FastArrayLoad, OddValuesAreAligned) {
    // Nine bytes of values: "Hi" from the first odd byte on, one byte and a half.
    const std::string image =
        Hex("00000000 'N' 02000000 02000000 00000000 09000000"
            "01000000 06000000 0400 0300  FF 4800 6900 FF 4142 43  00000000");
    const Store store;
    EXPECT_EQ(ImageResult::kLoaded, store.Load(image));
    EXPECT_EQ(u"Hi", store.Value(0));
    EXPECT_EQ(u"\u4241", store.Value(1));
    const unsigned short* units = nullptr;
    unsigned long count = 0;
    ASSERT_TRUE(store->GetUTF16Ptr(0, units, count));
    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(units) % alignof(unsigned short));
    const Store reloaded;
    reloaded.Load(store.Image());
    EXPECT_EQ(u"Hi", reloaded.Value(0));
    EXPECT_EQ(u"\u4241", reloaded.Value(1));
}

TEST(FastArrayLoad, FaultsAreFoundWhereTheyAre) {
    struct Row {
        int line;
        std::size_t offset;
        std::string_view patch;
        ImageFault fault;
        std::uint64_t faultOffset;
    };
    for (const Row& row : {
             Row{__LINE__, 0, "05000000", ImageFault::kIdBaseConflict, 0},
             Row{__LINE__, 5, "FFFFFFFF", ImageFault::kCutShort, 25},  // entries
             Row{__LINE__, 29, "03000000", ImageFault::kKeyOutside, 29},
             Row{__LINE__, 33, "0400", ImageFault::kKeyOutside, 29},  // in all too long
             Row{__LINE__, 37, "FFFFFFFF", ImageFault::kValueOutside, 37},
             Row{__LINE__, 45, "0500", ImageFault::kValueOutside, 41},
             Row{__LINE__, 21, "FFFFFFFF", ImageFault::kCutShort, 53},  // value area
             Row{__LINE__, 59, "FD03", ImageFault::kSlotOutside, 59},   // 1021
             Row{__LINE__, 61, "FFFF", ImageFault::kSlotOutside, 61},
             Row{__LINE__, 59, "FC03", ImageFault::kNone, 0},  // 1020
             Row{__LINE__, 63, "FFFFFFFF FFFFFFFF", ImageFault::kCutShort, 71},
             Row{__LINE__, 75, "02000000", ImageFault::kIdOutside, 75},
             Row{__LINE__, 79, "FFFFFFFF", ImageFault::kCutShort, 87},  // accelerators
             Row{__LINE__, 79, "02000000", ImageFault::kAcceleratorOrder, 91},
             Row{__LINE__, 87, "02000000", ImageFault::kIdOutside, 87},
             Row{__LINE__, 91, "01000000", ImageFault::kAcceleratorOutside, 91},
             Row{__LINE__, 83, "FFFFFFFF", ImageFault::kCutShort, 97},  // their area
         }) {
        SCOPED_TRACE(row.line);
        const std::string image = Patched(kBody, row.offset, row.patch);
        std::istringstream stream(image);
        ImageReader memory(image.data(), image.data() + image.size(), lexon::EndianT::kHost);
        ImageReader streamed(stream, lexon::EndianT::kHost);
        for (ImageReader* reader : {&memory, &streamed}) {
            const Store store;
            store.Add("/A", u"old");
            const std::string before = store.Image();
            const ImageResult result = store->Load(*reader);
            EXPECT_EQ(row.fault, reader->Fault()) << Describe(reader->Fault());
            EXPECT_EQ(row.faultOffset, reader->FaultOffset());
            const bool rejected =
                row.fault == ImageFault::kCutShort || row.fault == ImageFault::kIdBaseConflict;
            EXPECT_EQ(row.fault == ImageFault::kNone ? ImageResult::kLoaded
                      : rejected                     ? ImageResult::kRejected
                                                     : ImageResult::kMalformed,
                      result);
            EXPECT_EQ(row.fault != ImageFault::kNone, store.Image() == before);
        }
    }
}

TEST(FastArraySave, AStoreOfBothKindsKeepsItsValues) {
    const Store store;
    store.Load(Hex(kBodyWithoutKeys));
    store.Add("/k", u"keyed", u"K");
    const Store keyed;
    EXPECT_EQ(ImageResult::kLoaded, keyed.Load(store.Image()));
    EXPECT_EQ(2U, keyed.Find("/k"));
    EXPECT_EQ(u"keyed", keyed.Value(2));
    EXPECT_EQ(3U, keyed->LiveCount());
    const Store unkeyed;
    unkeyed.Load(store.Image(7, lexon::SaveType::kBinaryNoKeys));
    EXPECT_EQ(u"Hi", unkeyed.Value(0));
    EXPECT_EQ(u"keyed", unkeyed.Value(2));
    EXPECT_EQ(u"K", unkeyed.Accelerator(2));
    EXPECT_EQ(Hex("07000000 'N'"), store.Image(7, lexon::SaveType::kBinaryNoKeys).substr(0, 5));

    std::ostringstream text;
    EXPECT_EQ(0U,
              store->Serialize2(text, lexon::SaveType::kText, nullptr, lexon::EndianT::kHost, 0));
    EXPECT_EQ("H\0i\0\"\0\n\0"s + "\xAC\x20\"\0\n\0"s + "\"\0/\0k\0=\0k\0e\0y\0e\0d\0\"\0\n\0"s,
              text.str());
}

TEST(FastArraySave, ExceptionsAreReported) {
    struct Broken : std::stringbuf {
        std::streamsize xsputn(const char*, std::streamsize) override { throw 1; }
    } broken;
    std::ostream out(&broken);
    out.exceptions(std::ios_base::badbit);
    const Store store;
    testing::internal::CaptureStderr();
    EXPECT_EQ(0U,
              store->Serialize2(out, lexon::SaveType::kBinary, nullptr, lexon::EndianT::kHost, 0));
    EXPECT_EQ("Serialize2: Caught exception\n", testing::internal::GetCapturedStderr());
}

// A stream that cannot tell how long it is.
struct Endless : std::stringbuf {
    using std::stringbuf::stringbuf;
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
        return pos_type(off_type(-1));
    }
};

TEST(ImageReader, StreamsThatCannotTellTheirEndAreReadInSteps) {
    Store large;
    for (int i = 0; i < 3000; ++i)
        large.Add("/key/" + std::to_string(i), std::u16string(100, u'v'));
    const std::string image = large.Image();
    for (const std::size_t length : {image.size(), image.size() - 1, std::size_t{200'000}}) {
        Endless buffer(image.substr(0, length), std::ios_base::in);
        std::istream stream(&buffer);
        const Store store;
        EXPECT_EQ(0U, store->Read(stream, 0, lexon::EndianT::kLittle));
        EXPECT_EQ(length == image.size(), stream.good());
        EXPECT_EQ(length == image.size() ? image : Store().Image(), store.Image());
    }
}

}  // namespace
}  // namespace wordlex_tests
