// A million random operations on both stores, each step compared with a plain model.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "tests/wordlex/Dictionaries.h"
#include "wordlex/functionality/ByteRunKey.h"
#include "wordlex/functionality/HashTableGeneric.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;

constexpr unsigned kSteps = 500'000;
constexpr unsigned kStepsBetweenChecks = 20'000;

// One of 2000 keys, half of which share few buckets: the bucket hash skips their digits.
std::string KeyOf(std::uint_fast32_t number) {
    const std::string digits = std::to_string(1000 + number % 1000);
    if (number % 2000 < 1000) return "/Key" + digits;
    std::string key = "0_2_4_6_8_";
    for (std::size_t i = 0; i < digits.size(); ++i)
        key[2 * i + 1] = digits[i];
    return key;
}

struct Marked final : ByteRunKey {
    Marked(const std::string& text, unsigned stepMade)
        : ByteRunKey(Bytes(text), text.size(), true), step(stepMade) {}
    unsigned step;
};

TEST(RandomOperations, KeepAHashTableAsItsModel) {
    std::mt19937 random(1);
    HashTableGeneric table;
    std::map<std::string, std::vector<unsigned>> model;  // steps of equal items, the newest last
    for (unsigned step = 0; step < kSteps; ++step) {
        const std::string key = KeyOf(random());
        std::vector<unsigned>& held = model[key];
        const Marked probe(key, 0);
        const HashItem* const found = table.Find(probe);
        ASSERT_EQ(held.empty(), found == nullptr) << key;
        if (found != nullptr) {
            ASSERT_EQ(held.back(), static_cast<const Marked*>(found)->step);
        }
        const auto choice = random() % 8;
        if (choice < 4 && !held.empty()) held.pop_back();
        if (choice < 3) delete table.Remove(probe);
        if (choice == 3) table.Replace(new Marked(key, step));
        if (choice == 4) table.Insert(new Marked(key, step));
        if (choice == 3 || choice == 4) held.push_back(step);
        if (step % kStepsBetweenChecks != 0) continue;
        std::vector<std::pair<unsigned long, unsigned>> expected;  // buckets up, steps down
        for (const auto& [text, steps] : model) {
            for (const unsigned made : steps)
                expected.emplace_back(HashFunc(Bytes(text), text.size()), ~made);
        }
        std::ranges::sort(expected);
        for (const auto& [bucket, made] : expected) {
            ASSERT_TRUE(table.HasMoreItem());
            ASSERT_EQ(~made, static_cast<Marked*>(table.NextItem())->step);
        }
        ASSERT_FALSE(table.HasMoreItem());
    }
}

class CompactModel {
public:
    void Add(const std::string& key, unsigned value) {
        std::vector<unsigned>& ids = idsOf[key];
        if (ids.empty()) {
            Append(key, value);
        } else {
            values[ids.front()] = value;
        }
    }
    void Append(const std::string& key, unsigned value) {
        idsOf[key].push_back(static_cast<unsigned>(keys.size()));
        keys.push_back(key);
        values.push_back(value);
    }
    void AppendDead() {
        keys.emplace_back();
        values.push_back(0);
    }
    void Remove(std::size_t id) {
        std::erase(idsOf[keys[id]], id);
        keys[id].clear();
    }
    unsigned long Find(const std::string& key) {
        return idsOf[key].empty() ? ~0UL : idsOf[key].front();
    }
    std::vector<std::string> keys;  // by id, empty when removed
    std::vector<unsigned> values;

private:
    std::map<std::string, std::vector<unsigned>> idsOf;  // in the order in which they are found
};

void Add(Dictionary& dictionary, const std::string& key, unsigned value) {
    wordlex_tests::Add(dictionary, key.c_str(),
                       std::u16string(1 + value % 3, static_cast<char16_t>(value)));
}

TEST(RandomOperations, KeepACompactStoreAsItsModel) {
    std::mt19937 random(2);
    Dictionary store(true);
    CompactModel model;
    const auto check = [&](unsigned long id) {
        const bool valid = id < model.keys.size() && !model.keys[id].empty();
        ASSERT_EQ(valid, store.ValidId(id)) << id;
        const unsigned short* units = nullptr;
        unsigned long length = 0;
        ASSERT_EQ(valid, store.LookupReturnUTF16Ptr(id, units, length, nullptr));
        if (valid) {
            ASSERT_EQ(static_cast<unsigned short>(model.values[id]), *units);
        }
    };
    for (unsigned step = 0; step < kSteps; ++step) {
        const std::string key = KeyOf(random());
        const unsigned long id = model.Find(key);
        ASSERT_EQ(id, store.GetNumericId(key.c_str())) << key;
        check(id);
        const auto choice = random() % 1024;
        if (choice < 2) {  // an image, merged or appended with keys that may exist
            Dictionary image(true);
            CompactModel brought;
            for (unsigned i = 0; i < 5; ++i) {
                const std::string more = KeyOf(random());
                Add(image, more, step);
                brought.Add(more, step);
            }
            const bool appends = choice == 1 && !model.keys.empty();
            bool bringsKeys = appends;
            for (const std::string& more : brought.keys)
                bringsKeys |= model.Find(more) == ~0UL;
            for (const std::string& more : brought.keys) {
                const bool held = !appends && model.Find(more) != ~0UL;
                if (appends) {
                    model.Append(more, step);
                } else {
                    model.Add(more, step);
                }
                if (held && bringsKeys) model.AppendDead();
            }
            std::stringstream file;
            image.Serialize(
                file, lexon::SaveType::kBinary, nullptr, lexon::EndianT::kBig,
                appends ? static_cast<unsigned>(model.keys.size() - brought.keys.size()) : 0);
            store.Read(&file);
        } else if (choice < 400) {
            Add(store, key, step);
            model.Add(key, step);
        } else if (choice < 600 && !model.keys.empty()) {
            const unsigned long gone = choice < 500 ? id : random() % model.keys.size();
            const bool valid = gone != ~0UL && !model.keys[gone].empty();
            ASSERT_EQ(valid ? gone : ~0UL, store.Remove(gone));
            if (valid) model.Remove(gone);
        }
        if (step % kStepsBetweenChecks != 0) continue;
        for (unsigned long each = 0; each <= model.keys.size(); ++each)
            check(each);
        ASSERT_EQ(static_cast<std::size_t>(std::ranges::count_if(
                      model.keys, [](const std::string& text) { return !text.empty(); })),
                  store.NumKeys());
    }
    for (const auto order : {lexon::EndianT::kBig, lexon::EndianT::kLittle}) {
        const std::string file = Saved(store, lexon::SaveType::kBinary, order);
        Dictionary reloaded;
        Load(reloaded, file);
        EXPECT_TRUE(file == Saved(reloaded, lexon::SaveType::kBinary, order));
        for (unsigned number = 0; number < 2000; ++number) {
            const std::string key = KeyOf(number);
            EXPECT_EQ(model.Find(key), reloaded.GetNumericId(key.c_str()));
        }
    }
}

}  // namespace
}  // namespace wordlex_tests
