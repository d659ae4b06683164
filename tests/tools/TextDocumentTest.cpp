// Edits of text dictionaries, and the annotations in their comments.
#include "tools/base/TextDocument.h"

#include <gtest/gtest.h>

#include <vector>

#include "tools/base/Annotations.h"
#include "tools/base/Encodings.h"
#include "tools/base/EntryLine.h"

namespace {

using namespace std::string_literals;
using tool::Annotations;
using tool::TextDocument;

// "untranslated stale message from:DIGEST ignore:NAME@OFFSET"
std::string Described(const Annotations& found) {
    std::string text;
    if (found.untranslated) text += "untranslated ";
    if (found.stale) text += "stale ";
    if (found.message) text += "message ";
    if (!found.from.empty()) text += "from:" + found.from + ' ';
    for (const auto& rule : found.ignored)
        text += rule.name + '@' + std::to_string(rule.offset) + ' ';
    return text;
}

TEST(Annotations, AreReadAndTheirMarksReplaced) {
    const Annotations stale{false, true, false, "0a1b2c", {}};
    struct Row {
        int line;
        const char* comment;
        const char* found;
        const char* withStale;
        const char* withNone;
    };
    const Row rows[] = {
        {__LINE__, "", "", "  wordlex: stale; from 0a1b2c", ""},
        {__LINE__, " for people; stale", "", " for people; stale  wordlex: stale; from 0a1b2c",
         " for people; stale"},
        {__LINE__, " wordlex: stale;from 0a1b2c", "stale from:0a1b2c ",
         " wordlex: stale;from 0a1b2c", ""},
        {__LINE__, "\twordlex:untranslated; short, please", "untranslated ",
         "\twordlex: stale; from 0a1b2c; short, please", "\twordlex: short, please"},
        {__LINE__, "à wordlex: from 00ffee wordlex: message;", "message from:00ffee ",
         "à wordlex: message; stale; from 0a1b2c", "à wordlex: message"},
        {__LINE__, "  wordlex: ignore no-equals, b-2; from the menu; stale bread",
         "no-equals@18 b-2@29 ",
         "  wordlex: ignore no-equals, b-2; stale; from 0a1b2c; from the menu; stale bread",
         "  wordlex: ignore no-equals, b-2; from the menu; stale bread"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(Described(tool::ParseAnnotations(row.comment)), row.found);
        EXPECT_EQ(tool::WithMarks(row.comment, stale), row.withStale);
        EXPECT_EQ(tool::WithMarks(row.comment, {}), row.withNone);
    }
}

TEST(Annotations, DigestChangesWithWhatIsShown) {
    const auto digest = [](const char* written) {
        return tool::ReferenceDigest(tool::UnitsOf(tool::FromUtf8(written)));
    };
    EXPECT_EQ(digest("Save"), "330500");  // on disk
    EXPECT_EQ(digest("^C 2019"), digest("#{copy} #{copyyear}"));
    EXPECT_EQ(digest("a#{comment}b"), digest("a"));
    EXPECT_NE(digest("Save"), digest("Save "));
    EXPECT_NE(digest("a#{mswindows}b"), digest("a#{mswindows}c"));
}

// Edits the entry "/A": value "é€", comment " c"; lines before and after it and at the end.
std::string Edited(const std::string& bytes) {
    TextDocument document(bytes);
    const TextDocument::Line& line = document.Lines()[*document.Find("/A")];
    const auto insert = tool::FromUtf8("\"/N=^€\" n");
    document.SetComment(line, line.after, " c");
    document.SetValue(line, tool::UnitsOf(tool::FromUtf8("é€")));
    document.InsertBefore(line, {});
    document.InsertAfter(line, tool::UnitsOf(insert));
    document.Append(tool::UnitsOf(insert));
    EXPECT_EQ(TextDocument(bytes).Bytes(), bytes);
    return document.Bytes();
}

std::string Wide(const std::u16string& text, bool big) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char pair[] = {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
        bytes += {pair[big ? 0 : 1], pair[big ? 1 : 0]};
    }
    return bytes;
}

TEST(TextDocument, KeepsEveryByteThatNoEditReplaces) {
    const std::u16string before = u"\uFEFF# ü \"$$$/A=ä\"\u2028\"B=\r\r\nC";
    const std::u16string after =
        u"\uFEFF\u2028# ü \"$$$/A=é€\" c\u2028\"/N=^€\" n\u2028\"B=\r\r\nC\u2028\"/N=^€\" n";
    for (const bool big : {false, true})
        EXPECT_EQ(Edited(Wide(before, big)), Wide(after, big));
    struct Row {
        int line;
        const char* encoding;
        std::string before;
        std::string after;
    };
    const Row rows[] = {
        {__LINE__, "utf-8", "\"/A=1\"\n\n\"/A=\xC3\xBC\"\t#",  // the last one counts
         "\"/A=1\"\n\n\n\"/A=é€\" c\n\"/N=^€\" n\n\"/N=^€\" n"},
        {__LINE__, "utf-8", "\xEF\xBB\xBF\"/A=x\" \r\nbad \xFF\r\n",
         "\xEF\xBB\xBF\r\n\"/A=é€\" c\r\n\"/N=^€\" n\r\nbad \xFF\r\n\"/N=^€\" n\r\n"},
        {__LINE__, "iso-8859-1", "\xFC \"/A=\xE4\"\r\xE9",
         "\r\xFC \"/A=\xE9#{U+20AC}\" c\r\"/N=^^#{U+20AC}\" n\r\xE9\r\"/N=^^#{U+20AC}\" n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        tool::UseEncoding(row.encoding);
        EXPECT_EQ(Edited(row.before), row.after);
    }
    tool::UseEncoding(tool::kDefaultEncoding);
}

TEST(TextDocument, SeesLinesAsTheLoaderDoes) {
    const TextDocument document(
        "\n x \"$$$/K=a\\\"b\" y\r\n\xFF\n\n\"$/bad=x\" z\n\"U=v\nplain\n\0\"Z=\""s);
    struct Row {
        TextDocument::Kind kind;
        bool quoted, blankBefore;
        std::uint64_t number;
        std::string key, value, comments;
    };
    using Kind = TextDocument::Kind;
    const Row rows[] = {
        {Kind::kEntry, true, true, 2, "/K", "a\\\"b", " x | y"},
        {Kind::kLost, false, false, 3, "", "", "|"},
        {Kind::kMalformed, true, true, 5, "", "", "| z"},
        {Kind::kEntry, false, false, 6, "U", "v", "|"},
        {Kind::kEntry, false, false, 7, "plain", "", "|"},
    };
    ASSERT_EQ(document.Lines().size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        const TextDocument::Line& line = document.Lines()[i];
        EXPECT_EQ(line.kind, rows[i].kind);
        EXPECT_EQ(line.quoted, rows[i].quoted);
        EXPECT_EQ(line.blankBefore, rows[i].blankBefore);
        EXPECT_EQ(line.number, rows[i].number);
        EXPECT_EQ(line.key, rows[i].key);
        EXPECT_EQ(tool::Utf8(document.Value(line)), rows[i].value);
        EXPECT_EQ(document.Comment(line, line.before) + '|' + document.Comment(line, line.after),
                  rows[i].comments);
    }
    EXPECT_FALSE(document.IsComplete());
    EXPECT_EQ(document.Find("Z"), std::nullopt);
}

// Written values as in sources: all strings of some troublesome units.
TEST(TextDocument, ReadsAWrittenValueAsItConverts) {
    static constexpr char16_t kUnits[] = u"\\^\"\n\u2028#{}nQ=";
    constexpr std::size_t kLongest = 4;
    std::vector<unsigned short> written;
    for (std::size_t number = 0, base = std::size(kUnits) - 1; written.size() <= kLongest;
         ++number) {
        written.clear();
        for (std::size_t rest = number; rest != 0; rest = (rest - 1) / base)
            written.push_back(kUnits[(rest - 1) % base]);
        std::vector<unsigned short> units{0xFEFF, '"', 'K', '='};
        tool::AppendWritten(units, written);
        units.push_back('"');
        const TextDocument document(Wide(std::u16string(units.begin(), units.end()), false));
        ASSERT_EQ(document.Lines().size(), 1U) << tool::ShowRaw(written);
        ASSERT_TRUE(document.Lines()[0].quoted) << tool::ShowRaw(written);
        ASSERT_TRUE(tool::ShowTheSame(document.Value(document.Lines()[0]), written))
            << tool::ShowRaw(written);
    }
}

}  // namespace
