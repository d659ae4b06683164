#include "wordlex/functionality/DictionaryReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "tests/wordlex/Settings.h"
#include "tests/wordlex/Text.h"

namespace wordlex_tests {
namespace {

using lexon_private::DictionaryReader;
using namespace std::string_literals;
using Lines = std::vector<std::u16string>;

std::string Utf16(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text)
        for (const int shift : {bigEndian ? 8 : 0, bigEndian ? 0 : 8})
            bytes += static_cast<char>(unit >> shift);
    return bytes;
}

Lines ReadAll(DictionaryReader* reader) {
    Lines lines;
    while (const unsigned short* line = reader->ReadALine()) {
        lines.push_back(Text(line, reader->GetLineLength()));
        EXPECT_EQ(line[reader->GetLineLength()], 0);
    }
    EXPECT_EQ(reader->ReadALine(), nullptr) << "the end is sticky";
    return lines;
}

// The lines of a text through both sources, which must agree.
Lines LinesOf(const std::string& bytes) {
    std::istringstream stream(bytes);
    const Lines fromStream = ReadAll(DictionaryReader::Make(&stream).get());
    const std::vector<char> image(bytes.begin(), bytes.end());  // exact size, for the sanitizers
    const auto reader = DictionaryReader::Make(image.data(), image.data() + image.size());
    EXPECT_EQ(reader == nullptr, image.size() < 2);
    if (reader != nullptr) {
        EXPECT_EQ(ReadAll(reader.get()), fromStream);
    }
    return fromStream;
}

TEST(DictionaryReaderLines, AreTheSameInEveryWidthAndOrder) {
    const auto check = [](const std::u16string& text, const Lines& expected) {
        EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(text, false)), expected);
        EXPECT_EQ(LinesOf("\xFE\xFF" + Utf16(text, true)), expected);
        EXPECT_EQ(LinesOf(std::string(text.begin(), text.end())), expected);
    };
    const std::u16string longLine(10'000, u'x');
    check(u"", {});
    check(u"a", {u"a"});
    check(u"a\n", {u"a"});
    check(u"a\rb\nc\r\nd", {u"a", u"b", u"c", u"", u"d"});
    check(u"\n\n", {u"", u""});
    check(u"ab\0cd\nef"s, {u"ab"});
    check(u"a\n\0b"s, {u"a"});
    check(u"\0a"s, {});
    check(u"a\n" + longLine + u"\nb", {u"a", longLine, u"b"});
    for (const int block : {0x8000, 0x10000}) {  // ends at, before and after one
        for (const int length : {block - 2, block - 1, block, block + 1}) {
            const std::u16string blockLine(static_cast<std::size_t>(length), u'y');
            check(blockLine + u"\nb", {blockLine, u"b"});
            check(blockLine + u"\0b"s, {blockLine});
        }
    }
}

TEST(DictionaryReaderLines, EndWhereTheirConversionEndsThem) {
    const SettingsGuard guard;
    lexon_private::UnicodeUtil::SetConversionProcs(
        [](auto*, unsigned long count, unsigned long& units, auto*) -> std::int64_t {
            units = count + 1;
            return 0;
        },
        [](const auto* bytes, unsigned long count, auto* units, unsigned long,
           auto*) -> std::int64_t {
            *std::copy_n(bytes, count, units) = 0;
            return 0;
        },
        nullptr, nullptr);
    EXPECT_EQ(LinesOf("ab\ncd"), (Lines{u"ab", u"cd"}));
}

TEST(DictionaryReaderLines, OfUnicodeTextAlone) {
    EXPECT_EQ(LinesOf("\xFE\xFF" + Utf16(u"a\u2028b\u2029\u4E2D\xD800", true)),
              (Lines{u"a", u"b", u"\u4E2D\xD800"s}));
    EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(u"ab", false) + "c"), Lines{u"ab"}) << "odd last byte";
    EXPECT_EQ(LinesOf("\xFF\xFE"
                      "c"),
              Lines{});
}

TEST(DictionaryReaderLines, OfEightBitTextAlone) {
    const SettingsGuard guard;
    lexon::Wordlex::SetDefaultApplicationEncoding(lexon::encodings::kUtf8);
    // Without a mark UTF-16 is 8-bit text and ends at its first 0 byte; UTF-8's mark is text.
    EXPECT_EQ(LinesOf(Utf16(u"ab", false)), Lines{u"a"});
    EXPECT_EQ(LinesOf("\xEF\xBB\xBF\"k=\xC3\xA9\""), Lines{u"\uFEFF\"k=\u00E9\""});
    EXPECT_EQ(LinesOf("a\n\xC3\nb"), (Lines{u"a", u"", u"b"})) << "bytes that are not text";
    EXPECT_EQ(LinesOf("x"), Lines{u"x"});
}

TEST(DictionaryReaderStream, NullOrFailedGivesNoLines) {
    EXPECT_EQ(ReadAll(DictionaryReader::Make(static_cast<std::istream*>(nullptr)).get()), Lines{});
    std::istringstream failed("text");
    failed.setstate(std::ios::badbit);
    // Choosing the reader clears the state to move back, so the text is still read.
    EXPECT_EQ(ReadAll(DictionaryReader::Make(&failed).get()), Lines{u"text"});
}

}  // namespace
}  // namespace wordlex_tests
