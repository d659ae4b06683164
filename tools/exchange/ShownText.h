#pragma once
// Texts in the form for translators. Escapes become their characters. What has a meaning of its own
// stays as a code: markers "^0" to "^9", parameter tags, line breaks and tabs, and in the form
// "#{...}" platform sections, #{comment}, #{copyyear} and characters that an editor hides. A "#{"
// that is text is shown as "#{U+0023}{".
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// In UTF-8, for a value as written in a dictionary.
std::string ShownText(Units written);
// The value as an author would write it. It shows the same text, although escapes may differ from
// those of the original value.
std::vector<unsigned short> WrittenText(std::string_view shown);
// The bytes of a key, each as the character with the same number; a control character as "\xNN".
std::string ShownKey(std::string_view key);

struct Piece {
    bool isCode;
    std::string text;
};
// Splits a shown text into texts and single codes, none of them empty.
std::vector<Piece> SplitCodes(std::string_view shown);
// A code on one line, for the attributes of XLIFF: "\n" and "\t" for line break and tab; other
// codes unchanged.
std::string NameOfCode(const std::string& code);
// Nothing unless the name is that of a single code.
std::optional<std::string> CodeOfName(const std::string& name);
// The length of the escape "#{...}" at the start of the text, or 0.
std::size_t EntityLength(Units text);

}  // namespace tool
