#include <gtest/gtest.h>

#include <cstring>

#include "tests/hardening/Memory.h"
#include "tests/hardening/Snapshot.h"
#include "tests/hardening/Streams.h"
#include "tests/wordlex/Images.h"
#include "wordlex/functionality/Dictionary.h"

namespace hardening {
namespace {

using lexon_private::Dictionary;
using namespace wordlex_tests;

enum class Form { kMemory, kStream, kBlindStream };  // the last does not know its end

// Gives what the dictionary says after the load. What it held is intact, it can be added to and
// saved, and the load has asked for no more memory than what `file` is worth.
std::string AfterLoad(std::string file, Form form, bool filled, bool compact) {
    constexpr std::uint64_t kMostBytesPerByte = 40;
    constexpr std::uint64_t kMostBytes = 150'000;  // buffers, and the first steps on a blind stream
    Dictionary dictionary(compact);
    if (filled) dictionary.Read("/Z=kept", 7, true);
    const std::uint64_t before = AllocatedBytes();
    if (form == Form::kMemory) {
        dictionary.Read(file.data(), static_cast<int>(file.size()), true);
    } else {
        FaultySource source(file, file.size(), Fault::kEnds, form == Form::kStream);
        std::istream stream(&source);
        dictionary.Read(&stream);
    }
    EXPECT_GE(kMostBytes + kMostBytesPerByte * file.size(), AllocatedBytes() - before);

    if (filled && (compact || !dictionary.ReSetKeyEnumeration())) {
        EXPECT_EQ(4U, dictionary.Lookup("/Z", nullptr).GetLength());
    }
    const std::string after = Snapshot(dictionary);
    const unsigned short value[] = {u'v'};
    const unsigned long id = dictionary.Add("/new", value, 1, nullptr, nullptr, 0);
    EXPECT_EQ(id, dictionary.GetNumericId("/new"));
    return after;
}

TEST(Extremes, OfEveryFieldAreReadAlikeAndCostLittle) {
    constexpr std::uint32_t kEntries = 2;
    constexpr std::size_t kMagicSize = 21;
    const std::pair<const std::string*, bool> files[] = {
        {&kLittleFile, false},    {&kBigFile, true},       {&kFileWithoutKeys, false},
        {&kVersion20File, false}, {&kVersion15File, true}, {&kVersion15Utf8File, true},
        {&kVersion10File, false},
    };
    for (const auto& [file, bigEndian] : files) {
        for (const std::uint32_t value : {0U, 1U, kEntries - 1, kEntries + 1, 1020U, 1021U,
                                          0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
            for (std::size_t at = kMagicSize; at + 2 <= file->size(); ++at) {
                SCOPED_TRACE(testing::Message()
                             << value << " at " << at << " of " << testing::PrintToString(*file));
                // Wherever a field may be: the low half alone, and the whole value.
                for (const std::size_t width : {sizeof(std::uint16_t), sizeof value}) {
                    if (at + width > file->size()) continue;
                    std::string changed = *file;
                    for (std::size_t i = 0; i < width; ++i)
                        changed[at + (bigEndian ? width - 1 - i : i)] =
                            static_cast<char>(value >> 8 * i);
                    for (const bool filled : {false, true}) {
                        const std::string expected =
                            AfterLoad(changed, Form::kMemory, filled, filled);
                        EXPECT_EQ(expected, AfterLoad(changed, Form::kStream, filled, filled));
                        EXPECT_EQ(expected, AfterLoad(changed, Form::kBlindStream, filled, filled));
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace hardening
