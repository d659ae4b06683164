#include "wordlex/functionality/HashTableGeneric.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/wordlex/Text.h"
#include "wordlex/functionality/ByteRunKey.h"
#include "wordlex/functionality/DictionaryEntry.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_literals;

int liveKeys = 0;

// A key that carries a mark, to tell equal keys apart.
struct Key final : ByteRunKey {
    Key(const std::string& text, char keyMark)
        : ByteRunKey(Bytes(text), text.size(), true), mark(keyMark) {
        ++liveKeys;
    }
    ~Key() override { --liveKeys; }
    char mark;
};

class HashTable : public testing::Test {
protected:
    ~HashTable() override {
        table.reset();
        EXPECT_EQ(0, liveKeys) << "the table owns its items";
    }
    // A key in the same bucket as those of the other marks: the hash skips the mark.
    static std::string Chained(char mark) { return "0"s + mark + "2_4_6_8_"; }
    void Insert(const std::string& text, char mark) { table->Insert(new Key(text, mark)); }
    void InsertChain(const std::string& marks) {
        for (const char mark : marks)
            Insert(Chained(mark), mark);
    }
    std::string Pass() const {
        std::string marks;
        while (table->HasMoreItem())
            marks += static_cast<Key*>(table->NextItem())->mark;
        EXPECT_EQ(static_cast<std::int32_t>(marks.size()), table->NumItems());
        return marks;
    }
    static char MarkOf(const HashItem* item) {
        return item == nullptr ? '-' : static_cast<const Key*>(item)->mark;
    }
    char Find(const std::string& text) const { return MarkOf(table->Find(Key(text, ' '))); }

    std::unique_ptr<HashTableGeneric> table = std::make_unique<HashTableGeneric>();
};

// Random operations cover the rest for keys; items of other classes need only these members.
TEST_F(HashTable, FindsItemsByTheirBucketAndEquality) {
    struct Item final : HashItem {
        Item(unsigned long inBucket, char itemMark) : bucket(inBucket), mark(itemMark) {}
        std::uint32_t Serialize(std::ostream&, bool, const lexon::EncodingInfo*) const override {
            return 0;
        }
        unsigned long Hash(unsigned long) const override { return bucket; }
        bool operator==(const HashItem& other) const override {
            return mark == static_cast<const Item&>(other).mark;
        }
        unsigned long bucket;
        char mark;
    };
    EXPECT_FALSE(table->HasMoreItem());
    for (const char mark : "abca"s)
        table->Insert(new Item(mark == 'b' ? 7 : 1020, mark));
    for (const bool found : {true, true, false})
        EXPECT_EQ(found, std::unique_ptr<HashItem>(table->Remove(Item(1020, 'a'))) != nullptr);
    EXPECT_EQ(nullptr, table->Find(Item(1020, 'b')));
    EXPECT_NE(nullptr, table->Find(Item(1020, 'c')));
}

TEST_F(HashTable, EndsAPassWhenAnItemComesOrGoes) {
    InsertChain("abc");
    const auto goOn = [this] {
        EXPECT_EQ(nullptr, table->NextItem());
        EXPECT_EQ(static_cast<std::size_t>(table->NumItems()), Pass().size());
        EXPECT_TRUE(table->HasMoreItem());  // leaves it at the head of the chain
    };
    EXPECT_TRUE(table->HasMoreItem());
    table->Replace(new Key(Chained('c'), 'd'));
    goOn();
    delete table->Remove(Key(Chained('c'), ' '));
    goOn();
    Insert(Chained('e'), 'e');
    goOn();
}

TEST_F(HashTable, LinksSeveralItemsAheadInTheirOrder) {
    InsertChain("a");
    HashItem* const items[] = {new Key(Chained('b'), 'b'), new Key(Chained('c'), 'c')};
    const HashTableGeneric::Group groups[] = {
        {static_cast<std::uint16_t>(items[0]->Hash(kHashBucketCount)), items}};
    table->InsertGroups(groups);
    EXPECT_EQ("bca", Pass());
    EXPECT_EQ('c', Find(Chained('c')));
    HashItem* const elsewhere[] = {new Key(Chained('a'), 'x')};
    const HashTableGeneric::Group wrong[] = {{1020, elsewhere}};
    table->InsertGroups(wrong);
    EXPECT_EQ("bcax", Pass());
    EXPECT_EQ('a', Find(Chained('a'))) << "a key in a wrong bucket is not found";
}

TEST_F(HashTable, WritesItsIndexAheadOfTheBinaryItems) {
    Insert("ab", 'b');
    Insert("\x60\x82", 'c');  // the bucket of "ab"
    Insert("A", 'a');
    std::ostringstream out("head", std::ios::ate);
    EXPECT_EQ(4U + 2 + 4 + 4, table->Serialize(out, true, nullptr));
    const std::uint32_t index[] = {2, 2, 6, 1, 1, 2, 2, 2, 2};  // buckets, their ends, sizes
    const std::uint16_t slots[] = {65, 139};
    EXPECT_EQ("head" + std::string(reinterpret_cast<const char*>(index), sizeof index) +
                  std::string(reinterpret_cast<const char*>(slots), sizeof slots) +
                  "AA\x60\x82\x60\x82" + "abab",
              out.str());
}

// Of the items, only dictionary entries know where their bytes are.
TEST_F(HashTable, WritesEachItemAsTheItemWritesItself) {
    for (int i = 0; i < 200; ++i) {
        const std::string key = "key " + std::to_string(i);
        const auto* const bytes = reinterpret_cast<const unsigned char*>(key.data());
        const std::u16string text = u"\"line\n" + std::u16string(key.begin(), key.end());
        const auto* const units = reinterpret_cast<const unsigned short*>(text.data());
        if (i % 3 == 0) {
            Insert(key, 'x');
        } else {
            table->Insert(
                new lexon_private::DictionaryEntry(bytes, key.size(), true, {units, text.size()}));
        }
    }
    for (const lexon::EndianT order : {lexon::EndianT::kLittle, lexon::EndianT::kBig}) {
        std::ostringstream lines;
        std::ostringstream keys;
        std::ostringstream values;
        std::uint32_t lineBytes = 0;
        while (table->HasMoreItem()) {
            lineBytes += table->NextItem()->Serialize(lines, false, nullptr);
            table->NextItem()->SerializeKey(keys, true, nullptr);
            table->NextItem()->SerializeValue(values, true, nullptr, order);
        }
        const std::string areas = keys.str() + values.str();
        std::ostringstream text;
        std::ostringstream image;
        EXPECT_EQ(lineBytes, table->Serialize2(text, false, nullptr, order));
        EXPECT_EQ(lines.str(), text.str());
        EXPECT_EQ(12 + areas.size(), table->Serialize2(image, true, nullptr, order));
        const std::size_t beforeAreas = 25 + 200 * 12;
        EXPECT_EQ(areas, image.str().substr(beforeAreas, areas.size()));
    }
}

}  // namespace
}  // namespace wordlex_tests
