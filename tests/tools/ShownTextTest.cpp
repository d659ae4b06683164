#include "tools/exchange/ShownText.h"

#include <gtest/gtest.h>

#include <random>

#include "wordlex/functionality/Escapes.h"

namespace {

using tool::UnitsOf;

std::string Converted(tool::Units written) {
    return tool::Utf8(UnitsOf(lexon_private::Escapes::Convert(written)));
}

// A value shown and written again converts to the same text, whatever it combines, and is shown as
// before: an import changes only what a translator changed.
TEST(ShownText, WrittenAgainMeansTheSame) {
    constexpr const char* kParts[] = {
        "\\",      "^",          "#",           "{",         "}",         "n",         "1",
        "\\\\",    "^^",         "^1",          "\\n",       "\\b",       "#{amp}",    "#{macos}",
        "#{ios}",  "#{comment}", "#{copyyear}", "#{U+0023}", "#{U+005E}", "#{U+005C}", "#{U+D83D}",
        "#{8}",    "#{A}",       "U+41}",       "é",         "\u200E",    "\t",        "\\\"",
        "#{endl}", "^C",         "<",           "&",
    };
    std::mt19937 random(1);
    for (int i = 0; i < 20'000; ++i) {
        std::string written;
        for (std::size_t parts = random() % 7; parts > 0; --parts)
            written += kParts[random() % std::size(kParts)];
        const tool::Text value = tool::FromUtf8(written);
        const std::string shown = tool::ShownText(UnitsOf(value));
        const auto again = tool::WrittenText(shown);
        ASSERT_EQ(Converted(UnitsOf(value)), Converted(again)) << written;
        ASSERT_EQ(shown, tool::ShownText(again)) << written;
        std::string joined;
        for (const tool::Piece& piece : tool::SplitCodes(shown))
            joined += piece.isCode ? tool::CodeOfName(tool::NameOfCode(piece.text)).value_or("?")
                                   : piece.text;
        ASSERT_EQ(shown, joined) << written;
    }
}

}  // namespace
