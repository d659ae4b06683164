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
    // The findings of the file, shortened: "PLACE RULE", one after the other.
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
    {__LINE__, "wordlex: ignore nope, no-equals \"A\"", "1:17 unknown-rule "},
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
    {__LINE__, "\"A=x#{U+D83D}\"", "1:5 lone-surrogate "},
    {__LINE__, "\xFF\xFE" + Wide("\"A=x") + "\x3D\xD8" + Wide("\""), "1:5 lone-surrogate "},
    {__LINE__, "\"A=\xF0\x9F\x98\x80^x^1^\"", "1:5 unknown-escape 1:9 unknown-escape "},
    {__LINE__, "\"A=#{amp}#{Amp}#{\"", "1:10 unknown-escape 1:16 unknown-escape "},
    {__LINE__, "\"A=^^1^^^2\"", "1:4 doubled-hat "},
    {__LINE__, "\"A=b#{comment}c\"", ""},
    {__LINE__, "\"A=b#{macos}c#{ios}d\"", "1:20 dropped-text "},
    {__LINE__, "\"A=#{macos}c#{macos}d\"", "1:12 dropped-text "},
    {__LINE__, "\"/M/A=&File\"\n\"/M/B=O(&f)\"\n\"/N/C=&F\"\n\"/M/D=F && &G\"",
     "2:9 same-accelerator "},
    {__LINE__, "\"/M/B=&x\"\n\"/M/A=&x\"", "2:7 same-accelerator "},
    {__LINE__, "\"A={b\" wordlex: message\n\"B={b, select, c {}}\" wordlex: message",
     "1:4 message-syntax 2:4 message-default "},
    {__LINE__,
     "\"A={b, plural, two {} other {}}\" wordlex: message\n"
     "\"B={b, plural, one {} two {} other {}}\" wordlex: message",
     "1:5 message-category 2:5 message-unused-form "},
    {__LINE__, "\xFF\xFE\"/A=b\"\n\"/B=c\"", "1:1 false-utf16-mark "},
    {__LINE__, "\"A=b\"\n<<<<<<< HEAD\n\"B=c\"\n=======\n\"B=d\"\n>>>>>>> x\n\"C=d\"",
     "2:1 conflict-marker "},
    {__LINE__, "=======\n\"B=d\"", "1:1 conflict-marker "},
    {__LINE__, "\"A=say \"hi\" now\"", "1:9 text-after-mark "},
    {__LINE__, "\"A=b\"  \"C=d\"\n\"E=f\"g", "1:8 text-after-mark 2:6 text-after-mark "},
    {__LINE__, "\"A=b\"# as in \"B\"\n\"B=c\",\n\"C=c\" see B's", ""},
    {__LINE__, "# \"A=b\"\n//\"B=c\"\nfor C: \"C=d\"", "1:1 commented-entry 2:1 commented-entry "},
    {__LINE__,
     "\"A=a\xE2\x80\xA8"
     "b\xE2\x80\x8B#{U+200B}\"\n\"B=\xD9\x86\xE2\x80\x8C\"",
     "1:5 hidden-character "},
    {__LINE__,
     "\"A=\xE2\x80\xAA"
     "b\xE2\x80\xAC\"\n\"B=b#{U+2067}c\"\n\"C=#{U+202C}\"",
     "2:5 unbalanced-direction 3:4 unbalanced-direction "},
    {__LINE__, "\"A=caf\xEF\xBF\xBD\"", "1:7 replacement-character "},
    {__LINE__, "\"A=K\xC3\x83\xC2\xA4se\"\n\"B=\xC3\xA2\xE2\x82\xAC\xC5\x93\"",
     "1:5 double-encoded 2:4 double-encoded "},
    {__LINE__, "\"A=\xE2\x80\x9ESpa\xC3\x9F\xE2\x80\x9C, MANH\xC3\x83\xE2\x80\x9D\"", ""},
    {__LINE__, "\"A=cafe\xCC\x81\"\n\"B=x\xCC\x81\"", "1:7 decomposed "},
    {__LINE__, "\"/A=&Open && &File (AT&T) http://x/?a&b\"", "1:14 doubled-accelerator "},
    {__LINE__, "\"/A=Fish &\"\n\"/B=Fish & Chips &&\"", "1:10 trailing-ampersand "},
    {__LINE__, "\"A=b\" wordlex: untranslated\n\"B=c\" wordlex: stale; from 123456",
     "1:4 untranslated 2:4 stale "},
};

// Compares each row's text with that of kReference with the same key.
const char kReference[] =
    "\"/A=^1 <param name=\\\"x\\\"/>\"\n\"/C=c\" wordlex: ignore same-as-reference\n"
    "\"/E/File=one\"\n\"/Go=&Go ^1... \\b^#G\"\n\"/P=Tip#{macos}Mac tip\"\n"
    "\"/Q=Quit now? \"\n\"/R=^1 of ^2.\"\n\"/T=a\\nb\"\n"
    "\"/N={n, number}{o}\" wordlex: message; ignore same-as-reference";

const Row kTranslationRows[] = {
    {__LINE__, "\"/A=<param name=\\\"x\\\"/> ^1\"\n\"/C=c\"", ""},
    {__LINE__, "\"/A=^2 <param name=\\\"y\\\"/>\"", "1:5 missing-marker 1:8 missing-parameter "},
    {__LINE__, "\"/C=x ^2<param name=\\\"y\\\"/>\"", "1:7 extra-marker 1:9 extra-parameter "},
    {__LINE__, "\"/C=x\"\n\"/E/Flie=eins\"\n\"/Nobody=x\"", "2:2 obsolete-key 3:2 obsolete-key "},
    {__LINE__, "\"/E/File=one\"", "1:10 same-as-reference "},
    {__LINE__, "\"/E/File=one\" wordlex: untranslated", "1:10 untranslated "},
    {__LINE__, "\"/E/File=eins\" wordlex: from 000000", "1:10 stale "},
    {__LINE__, "\"/E/File=\"", "1:10 empty-text "},
    {__LINE__, "\"/E/File=&eins {n}\"", "1:10 extra-accelerator 1:16 foreign-placeholder "},
    {__LINE__, "\"/E/File=R&D & \xC3\x85\xC5\xA2&T\"", ""},
    {__LINE__, "\"/Go=Los ^1\\u2026\"",
     "1:6 missing-accelerator 1:6 missing-shortcut "
     "1:12 unknown-escape 1:17 final-punctuation "},
    {__LINE__, "\"/Go=\xE8\xA1\x8C ^1 (&G)\xE2\x80\xA6 \\b^#G\"", ""},
    {__LINE__, "\"/N={n, number}{o}\"", ""},
    {__LINE__, "\"/N={n, number}{o}{m}\"", "1:20 extra-argument "},
    {__LINE__, "\"/N={m}{n, date}\"", "1:6 missing-argument 1:9 argument-type "},
    {__LINE__, "\"/P=Tipp\"\n\"/T=a b\"", "1:5 missing-section 2:5 line-breaks "},
    {__LINE__, "\"/Q=Jetzt beenden?\"", "1:5 outer-blanks "},
    {__LINE__, "\"/Q=\xE7\xB5\x82\xE4\xBA\x86\xEF\xBC\x9F\"", ""},
    {__LINE__, "\"/Q=Beenden. \"", "1:12 final-punctuation "},
    {__LINE__, "\"/R=^2 von ^1, ^1.\"", "1:16 repeated-marker "},
    {__LINE__, "\"/R=%d von ^2.\"", "1:5 missing-marker "},
    {__LINE__, "\"/R=%1 von ^ 2.\"", "1:5 missing-marker 1:12 missing-marker "},
    {__LINE__, "\"/R=^\xEF\xBC\x91 &nbsp;^2&nbsp;.\"",
     "1:5 missing-marker 1:8 foreign-placeholder "},
    {__LINE__, "\"/R=^1 \"von\" ^2.\"", "1:9 text-after-mark "},
    {__LINE__, "\"/R=\"^1\" von ^2.\"", "1:6 text-after-mark "},
    {__LINE__, "\"/P=Tipp#{maco}x\"", "1:9 unknown-escape "},
    {__LINE__, "\"/R=^1 von", "1:1 unclosed-quote "},
    {__LINE__, "\"/R=^1 von ^2\\\"", "1:14 trailing-backslash "},
    {__LINE__, "\"/R=^1 \xE0\xB8\x82\xE0\xB8\xAD\xE0\xB8\x87 ^2\"", ""},
};

TEST_F(CheckTest, EachRuleFiresWhereItShould) {
    Write("reference.txt", kReference);
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
        EXPECT_EQ(Found("--disable=missing-key --reference=reference.txt m"), row.found);
        all += row.found;
    }
    // The misspelt key is not missing too; the places are those of the reference.
    Write("m", "\"/E/Flie=eins\"\n\"/P=x#{macos}y\"");
    all += Found("--disable=obsolete-key --reference=reference.txt m");
    EXPECT_EQ(all.substr(all.find("1:2 missing-key")),
              "1:2 missing-key 2:2 missing-key 4:2 missing-key 6:2 missing-key 7:2 missing-key "
              "8:2 missing-key 9:2 missing-key ");
    // A line with a finding about its key is not reported as a missing and as an obsolete key too.
    Write("two.txt", "\"/File=one\"\n\"/Quit=1\"");
    const Row spoiltRows[] = {
        {__LINE__, "\"/File=eins\" \"/Quit=1\"", "1:14 text-after-mark "},
        {__LINE__, "\"$$/File=eins\"\n\"/Quit=1\"", "1:2 dollar-key "},
        {__LINE__, "\"/File=\xFF\"\n\"/Quit=1\"", "1:8 invalid-text "},
        {__LINE__, "\" $$$/File=eins\"\n\"/Quit=1\"", "1:3 inner-prefix "},
        {__LINE__, "\"/File eins\"\n\"/Quit=1\"", "1:12 no-equals "},
        {__LINE__, "\"/File =eins\"\n\"/Quit=1\"", "1:7 blank-at-equals "},
        {__LINE__, "/File=eins\"\n\"/Quit=1\"", "1:11 unclosed-quote "},
        {__LINE__, "# Files\n\"/File=eins\"\n\"/Quit=1\"", "1:1 unquoted-line "},
        {__LINE__, std::string("\"/File=ei\0ns\"\n\"/Quit=1\"", 23), "1:10 zero "},
        {__LINE__, "\"/Files eins\"\n\"/Quit=1\"", "1:13 no-equals 1:2 missing-key "},
    };
    for (const Row& row : spoiltRows) {
        SCOPED_TRACE(row.line);
        Write("m", row.bytes);
        EXPECT_EQ(Found("--reference=two.txt m"), row.found);
    }
    for (const tool::RuleInfo& rule : tool::AllRules()) {
        // Those of binary files and of sources are in transcripts.
        using tool::Rule;
        const bool shown = rule.rule == Rule::kMalformedBinary ||
                           rule.rule == Rule::kUnreachableEntry ||
                           rule.rule == Rule::kUnextractedKey || rule.rule == Rule::kUnusedKey ||
                           rule.rule == Rule::kDefaultText;
        EXPECT_NE(shown, all.find(rule.name) != std::string::npos) << rule.name;
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
