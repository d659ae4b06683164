#include "wordlex/functionality/KeyIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <random>

using lexon_private::KeyIndex;

namespace {

using Entries = std::deque<std::uint32_t>;

Entries Under(const KeyIndex<std::uint32_t>& index, std::uint32_t hash) {
    Entries entries;
    for (auto entry = index.First(hash); entry.has_value(); entry = index.Next(hash, *entry))
        entries.push_back(*entry);
    return entries;
}

// Few hashes and few entries, so that most steps meet a ring: entries that are there already, the
// first, the last and one of two removed, and one entry under several hashes.
TEST(KeyIndexTest, KeepsTheOrderOfEntriesWithOneHash) {
    constexpr std::uint32_t kHashes = 4;
    constexpr std::uint32_t kEntries = 6;
    std::mt19937 random(2);
    KeyIndex<std::uint32_t> index;
    std::map<std::uint32_t, Entries> model;
    for (int step = 0; step < 50'000; ++step) {
        const auto hash = static_cast<std::uint32_t>(random() % kHashes);
        const auto entry = static_cast<std::uint32_t>(random() % kEntries);
        Entries& expected = model[hash];
        const auto place = std::find(expected.begin(), expected.end(), entry);
        switch (random() % 4) {
            case 0:
                index.PutFirst(hash, entry);
                if (place == expected.end()) expected.push_front(entry);
                break;
            case 1:
                index.PutLast(hash, entry);
                if (place == expected.end()) expected.push_back(entry);
                break;
            case 2:
                index.Remove(hash, entry);
                if (place != expected.end()) expected.erase(place);
                break;
            default:
                if (expected.empty() || place != expected.end()) break;
                const std::uint32_t old = expected[random() % expected.size()];
                index.Replace(hash, old, entry);
                expected.erase(std::find(expected.begin(), expected.end(), old));
                expected.push_front(entry);
        }
        ASSERT_EQ(Under(index, hash), expected) << step;
    }
}

}  // namespace
