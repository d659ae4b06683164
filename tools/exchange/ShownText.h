#pragma once
// Texts as translators see them. Escapes are resolved to the characters that they stand for. What
// has a meaning of its own stays as a code: markers "^0" to "^9", parameter tags, line breaks and
// tabs, and in the form "#{...}" platform sections, #{comment}, #{copyyear} and characters that an
// editor hides. A "#{" that is text is shown as "#{U+0023}{".
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// In UTF-8, for a value as it is written in a dictionary.
std::string ShownText(Units written);
// The value as an author would write it. It shows the same text, although escapes may differ from
// those of the value that was shown.
std::vector<unsigned short> WrittenText(std::string_view shown);
// The bytes of a key, each as the character of the same number; a control character as "\xNN".
std::string ShownKey(std::string_view key);

struct Piece {
    bool isCode;
    std::string text;
};
// Splits a shown text into texts and single codes. None of them is empty.
std::vector<Piece> SplitCodes(std::string_view shown);
// A code in one line, for the attributes of XLIFF: "\n" and "\t" for line break and tab, and any
// other code itself.
std::string NameOfCode(const std::string& code);
// Nothing for what is no single code.
std::optional<std::string> CodeOfName(const std::string& name);
// The units of the escape "#{...}" that begins the text, or 0.
std::size_t EntityLength(Units text);

}  // namespace tool
