#include "tests/hardening/Streams.h"

#include <gtest/gtest.h>

#include "tests/hardening/Snapshot.h"
#include "tests/wordlex/Images.h"
#include "tests/wordlex/Text.h"
#include "wordlex/functionality/Dictionary.h"

namespace hardening {
namespace {

using lexon_private::Dictionary;
using namespace std::string_literals;
using namespace wordlex_tests;

const std::string kText = "\"$$$/A=1\"\n\"$/bad\"\n\"/B=2\"\n\"/A=3\"";
const std::string kWideText = "\xFF\xFE"s + "\"\0k\0=\0v\0\"\0\n\0a\0=\0b\0"s;

void Fill(Dictionary& dictionary) { Load(dictionary, "/A=old\n/Z=kept"); }

std::string AfterRead(const std::string& content, std::size_t faultAt, Fault fault, Seeks seeks,
                      bool compact) {
    FaultySource source(content, faultAt, fault, seeks);
    std::istream stream(&source);
    Dictionary dictionary(compact);
    Fill(dictionary);
    // Content without a mark is read from its start, whatever the position of the stream.
    if (seeks == Seeks::kNotToTheEnd && content != kWideText) stream.seekg(1);
    if (seeks == Seeks::kNowhere) {
        dictionary.Read(stream);
    } else {
        dictionary.Read(&stream);
    }
    EXPECT_TRUE(dictionary.HasKey("/Z", nullptr) || (!compact && dictionary.ReSetKeyEnumeration()));
    return Snapshot(dictionary);
}

TEST(FailingStream, ReadsAsOneThatEndsThere) {
    for (const std::string& file :
         {kText, kWideText, kLittleFile, kBigFile, kFileWithoutKeys, kBigFileWithoutKeys,
          kVersion20File, kVersion15File, kVersion15Utf8File, kVersion10File}) {
        for (std::size_t at = 0; at <= file.size(); ++at) {
            SCOPED_TRACE(testing::Message()
                         << "byte " << at << " of " << testing::PrintToString(file));
            const std::string whole = file.substr(0, at);
            for (const bool compact : {false, true}) {
                const std::string expected =
                    AfterRead(whole, whole.size(), Fault::kEnds, Seeks::kAnywhere, compact);
                for (const Fault fault : {Fault::kEnds, Fault::kThrows}) {
                    for (const Seeks seeks :
                         {Seeks::kAnywhere, Seeks::kNotToTheEnd, Seeks::kNowhere}) {
                        // Content without the magic is a text, which is read from the start again.
                        if (seeks == Seeks::kNowhere && !whole.starts_with(Hex(kMagic))) continue;
                        EXPECT_EQ(expected, AfterRead(file, at, fault, seeks, compact));
                    }
                }
            }
        }
    }
}

TEST(FailingStream, ThatThrowsOnRequestLeavesTheDictionaryUsable) {
    for (const std::string& file : {kText, kLittleFile, kVersion15File, kVersion10File}) {
        for (const bool compact : {false, true}) {
            for (std::size_t at = 0; at < file.size(); ++at) {
                SCOPED_TRACE(at);
                FaultySource source(file, at, Fault::kThrows, Seeks::kAnywhere);
                std::istream stream(&source);
                stream.exceptions(std::ios_base::badbit);
                Dictionary dictionary(compact);
                Fill(dictionary);
                const std::string before = Snapshot(dictionary);
                EXPECT_THROW(dictionary.Read(&stream), std::runtime_error);
                if (file == kText) {
                    EXPECT_EQ(u"kept", Text(dictionary.Lookup("/Z", nullptr)));
                } else {
                    EXPECT_EQ(before, Snapshot(dictionary));
                }
                Load(dictionary, kText);
                EXPECT_EQ(u"2", Text(dictionary.Lookup("/B", nullptr)));
            }
        }
    }
}

TEST(FailingStream, ThatThrowsAtItsEndHasGivenEveryLine) {
    for (const std::string& file : {kText + '\n', kWideText + "\n\0"s, "k=v\n"s}) {
        for (const bool compact : {false, true}) {
            std::istringstream stream(file);
            stream.exceptions(std::ios_base::failbit);
            Dictionary dictionary(compact);
            EXPECT_THROW(dictionary.Read(&stream), std::ios_base::failure);
            Dictionary expected(compact);
            Load(expected, file);
            EXPECT_EQ(Snapshot(expected), Snapshot(dictionary));
        }
    }
}

TEST(FailingStream, WithoutABufferThrowsOnRequestToo) {
    std::istream none(nullptr);
    EXPECT_THROW(none.exceptions(std::ios_base::badbit), std::ios_base::failure);
    EXPECT_THROW(Dictionary().Read(&none), std::ios_base::failure);
}

// Whether the stream is good afterwards.
bool Write(const Dictionary& dictionary, lexon::SaveType type, std::size_t faultAt, Fault fault,
           std::string& taken, std::ios_base::iostate thrownOn = std::ios_base::goodbit) {
    FaultySink sink(taken, faultAt, fault);
    std::ostream stream(&sink);
    stream.exceptions(thrownOn);
    dictionary.Serialize(stream, type, nullptr, lexon::EndianT::kBig, 0);
    return stream.good();
}

TEST(FailingStream, TakesWhatIsWrittenUpToTheFault) {
    Dictionary table;
    Fill(table);
    Dictionary compact(true);
    Fill(compact);
    Load(compact, kLittleFile);
    for (const Dictionary* const dictionary : {&table, &compact}) {
        const std::string before = Snapshot(*dictionary);
        for (const lexon::SaveType type :
             {lexon::SaveType::kBinary, lexon::SaveType::kText, lexon::SaveType::kBinaryNoKeys}) {
            const std::string whole = Saved(*dictionary, type);
            for (std::size_t at = 0; at < whole.size(); ++at) {
                for (const Fault fault : {Fault::kEnds, Fault::kThrows}) {
                    SCOPED_TRACE(at);
                    std::string taken;
                    EXPECT_FALSE(Write(*dictionary, type, at, fault, taken));
                    EXPECT_EQ(whole.substr(0, at), taken);
                }
            }
        }
        EXPECT_EQ(before, Snapshot(*dictionary));
    }
}

// Larger than one write to the stream.
TEST(FailingStream, TakesBlocksUpToTheFaultAndThrowsWhatItThrew) {
    for (const bool compact : {false, true}) {
        Dictionary dictionary(compact);
        for (int i = 0; i < 3'000; ++i)
            Load(dictionary, "/key" + std::to_string(i) + "=a text of some words");
        for (const lexon::SaveType type : {lexon::SaveType::kBinary, lexon::SaveType::kText}) {
            const auto write = [&](std::size_t at, std::string& taken, auto thrownOn) {
                return Write(dictionary, type, at, Fault::kThrows, taken, thrownOn);
            };
            std::string whole;
            EXPECT_TRUE(write(std::string::npos, whole, std::ios_base::badbit));
            EXPECT_GT(whole.size(), 0x10000U);
            for (std::size_t at = 1; at < whole.size(); at += 0x3FFD) {
                SCOPED_TRACE(at);
                std::string taken;
                EXPECT_FALSE(write(at, taken, std::ios_base::goodbit));
                EXPECT_EQ(whole.substr(0, at), taken);
                taken.clear();
                if (compact && at > 40) {  // after the header
                    testing::internal::CaptureStderr();
                    EXPECT_FALSE(write(at, taken, std::ios_base::badbit));
                    EXPECT_EQ("Serialize2: Caught exception\n",
                              testing::internal::GetCapturedStderr());
                } else {
                    EXPECT_THROW(write(at, taken, std::ios_base::badbit), std::runtime_error);
                }
                EXPECT_EQ(whole.substr(0, at), taken);
            }
        }
    }
}

}  // namespace
}  // namespace hardening
