#include "wordlex/functionality/ByteRun.h"

#include <gtest/gtest.h>

#include "tests/wordlex/Settings.h"
#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/ByteRunKey.h"

namespace wordlex_tests {
namespace {

using namespace lexon_private;
using namespace std::string_literals;

ByteRunKey Probe(const std::string& text) { return {Bytes(text), text.size(), false}; }

TEST(ByteRun, HoldsACopyThatHandlesShare) {
    std::string source = "abc";
    const ByteRun run(Bytes(source), 3, false);
    ByteRun other(Bytes(source), 3, true);
    source = "xyz";
    EXPECT_EQ("abc", std::string(run.GetData(), run.GetData() + run.GetLength()));
    EXPECT_TRUE(run != other) << "made apart";
    other = run;
    const ByteRun& self = other;
    other = self;
    EXPECT_TRUE(run == other && run == ByteRun(run));
    EXPECT_TRUE(ByteRun(nullptr, 0, false) == ByteRun(Bytes(source), 0, false));
}

TEST(ByteRun, RefusesAMissingOrDeadValue) {
    EXPECT_EQ(kParm, ThrownCode([] { ByteRunValue::ValidatePointer(nullptr); }));
    ByteRunValue* const value = ByteRunValue::FindOrMake(nullptr, 0, 0);
    EXPECT_EQ(kParm, ThrownCode([value] { ByteRunValue::ValidatePointer(value); }));
    ByteRun run(value);
    EXPECT_EQ(value, ByteRunValue::ValidatePointer(value));
    run.Validate();
    const ByteRun taken(std::move(run));
    EXPECT_EQ(kParm, ThrownCode([&run] { run.Validate(); }));
}

TEST(HashFunc, IsPinned) {
    const std::pair<std::string, unsigned long> rows[] = {{"", 0},
                                                          {"A", 65},
                                                          {"ab", 139},
                                                          {"abcd", 622},
                                                          {"abcde", 606},
                                                          {std::string(9, '\xFF'), 926},
                                                          {"0123456789", 25},
                                                          {"/Menu/File/Open", 243}};
    for (const auto& [key, hash] : rows)
        EXPECT_EQ(hash, HashFunc(Bytes(key), key.size())) << key;
    EXPECT_EQ(2U, Probe("/Menu/File/Open").Hash(7));
    EXPECT_EQ(52962576U, Probe("/Menu/File/Open").Hash(1UL << 40));
}

TEST(ByteRunKey, IsEqualToTheSameBytes) {
    const std::string keys[] = {
        "",      "k",          "key",        "Key",           "keys",         "a\0b"s,
        "a\0c"s, "0123456789", "0x2x4x6x8x", "a long key, 1", "a long key, 2"};
    for (const std::string& a : keys) {
        for (const std::string& b : keys) {
            const HashItem& other = Probe(b);
            EXPECT_EQ(a == b, Probe(a) == other) << a << ' ' << b;
            EXPECT_EQ(a == b, Probe(a).KeyHash() == other.KeyHash()) << a << ' ' << b;
        }
    }
}

}  // namespace
}  // namespace wordlex_tests
