#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

#include "tests/tools/CommandTest.h"
#include "tools/check/Rules.h"

namespace {

using namespace std::string_literals;

class CheckTest : public CommandTest {
protected:
    // What is found in the file, shortened: "PLACE RULE", one after the other.
    std::string Found(const std::string& arguments) const {
        std::istringstream lines(Run("wordlex check " + arguments).out);
        std::string found;
        for (std::string line; std::getline(lines, line);) {
            const std::string place = line.substr(line.find(':') + 1);
            found += place.substr(0, place.find(": ")) + ' ' +
                     line.substr(line.rfind('[') + 1, line.rfind(']') - line.rfind('[') - 1) + ' ';
        }
        return found;
    }
};

struct Row {
    int line;
    std::string bytes;
    std::string found;
};

// 8-bit ASCII as UTF-16, little-endian, without a mark.
std::string Wide(const std::string& text) {
    std::string bytes;
    for (const char c : text)
        bytes += {c, '\0'};
    return bytes;
}

std::string Key(std::size_t size) { return "\"" + std::string(size, 'k') + "=v\""; }

const Row kTextRows[] = {
    {__LINE__, "\"$$$/A=b\"\n", ""},
    {__LINE__, Wide("\"A=b\""), "1:1 utf16-without-mark "},
    {__LINE__, Wide("\"/Menu/File=") + "\x3D\xD8\0\xDE"s + Wide("\""), "1:1 utf16-without-mark "},
    {__LINE__, Wide("\"A=") + std::string(600, 'N') + Wide("\""), "1:1 utf16-without-mark "},
    {__LINE__, "\xEF\xBB\xBF\"A=b\\q\"", "1:1 utf8-mark 1:5 unknown-escape "},
    {__LINE__, "\"A=b\"\0\n\"B=c\""s, "1:6 zero "},
    {__LINE__, "\"A=b\"\n\0\"B=c\""s, "2:1 zero "},
    {__LINE__, "\xFF\xFE" + Wide("\"A=b\"") + "x", "1:6 odd-byte "},
    {__LINE__, "\"A=b\"\n\"B=caf\xE9!\"\n\0"s, "2:7 invalid-text 3:1 zero "},
    {__LINE__, "\"B=caf\xE9\0"s, "1:7 invalid-text 1:7 zero "},
    {__LINE__, "  \"$/Bad=x\"\n$$", "1:4 dollar-key 2:1 dollar-key "},
    {__LINE__, "x \"A=b", "1:3 unclosed-quote "},
    {__LINE__, "\"A=say \\\"hi\\\" # not closed", "1:1 unclosed-quote "},
    {__LINE__, "\"A=C:\\\"  ", "1:6 trailing-backslash "},
    {__LINE__, "# comment = \r\n\r\nB", "1:1 unquoted-line 3:1 unquoted-line "},
    {__LINE__, "\"\xF0\x9F\x98\x80\"", "1:2 wide-key 1:3 no-equals "},
    {__LINE__, "\"A =\tb\"", "1:3 blank-at-equals 1:5 blank-at-equals "},
    {__LINE__, "wordlex: ignore nope, no-equals \"A\"", "1:1 unknown-rule "},
    {__LINE__, "\"A\" wordlex: ignore zero,no-equals", ""},
    {__LINE__, "\"$$$=a\"", "1:5 empty-key "},
    {__LINE__, "\" $$$A=b\"", "1:3 inner-prefix "},
    {__LINE__, "\"\xC5\x81=b\"\n\"A=c\"", "1:2 wide-key 2:2 key-collision "},
    {__LINE__, "\"A=b\"\n\"$$$A=b\"", "2:5 duplicate-key "},
    {__LINE__, Key(1023), ""},
    {__LINE__, Key(1024), "1:2 long-key "},
    {__LINE__, Key(65535), "1:2 long-key "},
    {__LINE__, Key(65536), "1:2 key-length "},
    {__LINE__, "\"A=" + std::string(32767, 'v') + '"', ""},
    {__LINE__, "\"A=" + std::string(32768, 'v') + '"', "1:4 value-length "},
    {__LINE__, "\"A=x#{U+D83D}\" \"", "1:4 lone-surrogate "},
    {__LINE__, "\xFF\xFE" + Wide("\"A=x") + "\x3D\xD8" + Wide("\""), "1:5 lone-surrogate "},
    {__LINE__, "\"A=\xF0\x9F\x98\x80^x^1^\"", "1:5 unknown-escape 1:9 unknown-escape "},
    {__LINE__, "\"A=#{amp}#{Amp}#{\"", "1:10 unknown-escape 1:16 unknown-escape "},
    {__LINE__, "\"A=^^1^^^2\"", "1:4 doubled-hat "},
    {__LINE__, "\"A=b#{comment}c\"", "1:15 dropped-text "},
    {__LINE__, "\"A=b#{macos}c#{ios}d\"", "1:20 dropped-text "},
    {__LINE__, "\"A=#{macos}c#{macos}d\"", "1:12 dropped-text "},
    {__LINE__, "\"/M/A=&File\"\n\"/M/B=O(&f)\"\n\"/N/C=&F\"\n\"/M/D=F && &G\"",
     "2:2 same-accelerator "},
    {__LINE__, "\"A={b\" wordlex: message\n\"B={b, select, c {}}\" wordlex: message",
     "1:4 message-syntax 2:4 message-default "},
    {__LINE__, "\"A={b, plural, two {} other {}}\" wordlex: message",
     "1:5 message-category 1:5 message-unused-form "},
    {__LINE__, "\"/M/B=&x\"\n\"/M/A=&x\"", "2:2 same-accelerator "},
};

// Against "/A=^1 <param name="x"/>", "/B=b" and the message "/C={n, number}{o}".
const Row kTranslationRows[] = {
    {__LINE__, "\"/A=<param name=\\\"x\\\"/> ^1\"\n\"/B=x\"\n\"/C={n, number}{o}\"", ""},
    {__LINE__, "\"/A=<param name=\\\"x\\\"/> ^1\"\n\"/B=b\"\n\"/D=c\"",
     "2:2 same-as-reference 3:2 obsolete-key  warning missing-key "},
    {__LINE__, "\"/A=^2 <param name=\\\"y\\\"/>\"\n\"/B=x\"\n\"/C={m}{n, date}\"",
     "1:2 missing-marker 1:2 extra-marker 1:2 missing-parameter 1:2 extra-parameter "
     "3:5 missing-argument 3:6 extra-argument 3:9 argument-type "},
};

TEST_F(CheckTest, EachRuleFiresWhereItShould) {
    Write("reference.txt",
          "\"/A=^1 <param name=\\\"x\\\"/>\"\n\"/B=b\"\n"
          "\"/C={n, number}{o}\" wordlex: message; ignore same-as-reference");
    std::string all;
    for (const Row& row : kTextRows) {
        SCOPED_TRACE(row.line);
        Write("en.txt", row.bytes);
        EXPECT_EQ(Found("en.txt"), row.found);
        all += row.found;
    }
    for (const Row& row : kTranslationRows) {
        SCOPED_TRACE(row.line);
        Write("m", row.bytes);
        EXPECT_EQ(Found("--reference=reference.txt m"), row.found);
        all += row.found;
    }
    for (const tool::RuleInfo& rule : tool::AllRules()) {
        const bool binary =
            rule.rule == tool::Rule::kMalformedBinary || rule.rule == tool::Rule::kUnreachableEntry;
        EXPECT_NE(binary, all.find(rule.name) != std::string::npos) << rule.name;
    }
}

TEST_F(CheckTest, EachRuleIsListedAndExplained) {
    const std::string list = Run("wordlex check --list-rules").out;
    std::ifstream file(PROJECT_DIR "/docs/checks.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    std::size_t last = 0;
    for (const tool::RuleInfo& rule : tool::AllRules()) {
        EXPECT_NE(list.find(rule.name + " "s), std::string::npos) << rule.name;
        const std::size_t at =
            page.find("### `"s + rule.name + "` (" + tool::Name(rule.severity) + ")\n", last);
        ASSERT_NE(at, std::string::npos) << rule.name << " has no head in its place";
        last = at;
    }
}

}  // namespace
