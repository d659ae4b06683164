// The texts that sources ask for, as a compiler's lexer would see them.
#include "tools/extract/SourceTexts.h"

#include <gtest/gtest.h>

#include "tools/base/Files.h"

namespace {

// "LINE:COLUMN KEY=TEXT;" of each text; without "=" where there is no default text, "-" before one
// that is ignored.
std::string Found(const std::string& source) {
    std::string found;
    for (const tool::SourceText& text : tool::FindTexts("a.cpp", source)) {
        found += text.ignored ? "-" : "";
        found += std::to_string(text.place.line) + ':' + std::to_string(text.place.column) + ' ' +
                 text.key + (text.hasText ? "=" + tool::Utf8(text.text) : "") + ';';
    }
    return found;
}

struct Row {
    int line;
    std::string source;
    const char* found;
};

TEST(SourceTexts, AreTheLiteralsThatACompilerSees) {
    const Row rows[] = {
        {__LINE__, "\xEF\xBB\xBF\"$$$/A=x\"", "1:1 /A=x;"},
        {__LINE__, "f(\"($$$/A=(x))\", \"($$$/B=y\", \"($$$/C)\")",
         "1:3 /A=(x);1:18 /B=y;1:30 /C;"},
        {__LINE__, "\"\"\"$$$/A=x\"", "1:3 /A=x;"},
        {__LINE__, "\"$$\" \"$/A\" \"=x\"", "1:1 /A=x;"},
        {__LINE__, "\"$$$/A=x\"\"\" u8\"y\"", "1:1 /A=xy;"},
        {__LINE__, "\"$$$/A=x\", \"y\"; \"$$$/B=x\" + \"y\"", "1:1 /A=x;1:17 /B=x;"},
        {__LINE__, "\"$$$/A=x\"_s \"y\"sv \"z\"", "1:1 /A=xyz;"},
        {__LINE__, "xR\"$$$/A=x\"; R\"($$$/B=)x\\n)\"", "1:3 /A=x;1:15 /B=)x\\n;"},
        {__LINE__, "R\"-($$$/A=a)\"\r\n)--\")-\"", "1:2 /A=a)\"\n)--\";"},
        {__LINE__, "R\"(\n\"$$$/No=x\"\n)\"; \"$$$/A=x\"", "3:5 /A=x;"},
        {__LINE__, "R\"\"(\"$$$/A=x\"", "1:5 /A=x;"},
        {__LINE__, "R\"seventeencharacter($$$/No=x)seventeencharacter\"", ""},
        {__LINE__, "L\"$$$/A=\\xD83D\\xDE00\" u\"\\u00e9\\x{e9}\\o{351}\"", "1:2 /A=😀ééé;"},
        {__LINE__, "\"$$$/A=\\101\\1012\\x41\" \"1\"", "1:1 /A=AA2A1;"},
        {__LINE__, "\"$$$/A=\\?\\'\\e\"", "1:1 /A=?'\x1B;"},
        {__LINE__, "\"$$$/A=x\\0y\" \"z\"", "1:1 /A=x;"},
        {__LINE__, "\"$$$/\\\nA=\\\\\r\nn\"", "1:1 /A=\n;"},
        {__LINE__, "\"$$$/A=x\\\\\", \"$$$/B=\\\"\"", "1:1 /A=x\\;1:14 /B=\";"},
        {__LINE__, "'\"' \"$$$/A=x\" '\\'' \"$$$/B=y\" L'\"'", "1:5 /A=x;1:20 /B=y;"},
        {__LINE__, "1'000 \"$$$/A=x\" 0x1'F \"$$$/B=x\" 1e+5'0", "1:7 /A=x;1:23 /B=x;"},
        {__LINE__, "\"$$$/No=x\n\"$$$/A=x\"", "2:1 /A=x;"},
        {__LINE__, "/\\\n/ \"$$$/No=x\"\n/\\\n* \"$$$/No=y\" *\\\n/ \"$$$/A=x\"", "5:3 /A=x;"},
        {__LINE__,
         "// \"$$$/No=x\" ?"
         "?/\n\"$$$/A=x\"",
         "2:1 /A=x;"},
        {__LINE__, "a / b; c /* \" */ \"$$$/A=x\" /* \"", "1:18 /A=x;"},
        {__LINE__, "#error don't \"$$$/No=x\n\"$$$/A=x\"", "2:1 /A=x;"},
        {__LINE__, "# define A \\\n \"$$$/A=x\" \\\n \"y\"\n\"z\"", "2:2 /A=xy;"},
        {__LINE__, "x #if 0\n\"$$$/A=x\"", "2:1 /A=x;"},
        {__LINE__, "#if 00 // 1\n\"$$$/No=x\"\n#endif /*\n*/ \"$$$/No=y\"\n\"$$$/A=x\"",
         "5:1 /A=x;"},
        {__LINE__, "#if !(1)\n\"$$$/No=x\"\n#elif X\n\"$$$/A=x\";\n#else\n\"$$$/B=x\";\n#endif",
         "4:1 /A=x;6:1 /B=x;"},
        {__LINE__, "#if true\n\"$$$/A=x\"\n#elifdef X\n\"$$$/No=x\"\n#endif\n#endif\n\"y\"",
         "2:1 /A=xy;"},
        {__LINE__, "#if 0\n#else\n\"$$$/A=x\"\n#if 0\n\"$$$/No=x\"\n#endif\n#endif", "3:1 /A=x;"},
        {__LINE__, "\"ä\" \"$$$/No\", \"$$$/B=ä\"; é(\"$$$/C=x\")", "1:15 /B=ä;1:28 /C=x;"},
        {__LINE__, "\"$$$/A=x\"; // wordlex: ignore unextracted-key\n\"$$$/B=y\"",
         "-1:1 /A=x;2:1 /B=y;"},
        {__LINE__, "/* wordlex: ignore unextracted-key */\n\"$$$/A\", \"$$$/B=x\";\n\"$$$/C=y\"",
         "-2:1 /A;-2:10 /B=x;3:1 /C=y;"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(Found(row.source), row.found);
    }
}

TEST(SourceTexts, ThatNeedThePreprocessorAreRefused) {
    const Row rows[] = {
        {__LINE__, "\"$$$/A=x\" PRIu64 \"y\"",
         "a.cpp:1:18: the text continues after the macro PRIu64"},
        {__LINE__, "\"$$$/A=x\"NAME\"y\"", "a.cpp:1:14: the text continues after the macro NAME"},
        {__LINE__, "\"$$$/A=x\"\n#ifdef X\n\"y\"\n#endif", "a.cpp:3:1: a condition changes"},
        {__LINE__, "\"$$$/A=x\"\n#if X\n#endif\n\"y\"", "a.cpp:4:1: a condition changes"},
        {__LINE__, "\"$$$/A=\\N{DIGIT ONE}\"", "a.cpp:1:1: the literal cannot"},
        {__LINE__, "\"$$$/A=\\uD800\"", "a.cpp:1:1: the literal cannot"},
        {__LINE__, "\"$$$/A=\\x100\"", "a.cpp:1:1: the literal cannot"},
        {__LINE__, "\"$$$/A=\" \"\xC3\"", "a.cpp:1:10: the literal cannot"},
        {__LINE__, "\xFF\xFE", "a.cpp: a source in UTF-16"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        try {
            ADD_FAILURE() << Found(row.source);
        } catch (const tool::Failure& failure) {
            EXPECT_EQ(std::string(failure.what()).substr(0, std::string(row.found).size()),
                      row.found);
        }
    }
    // What is no text of a dictionary may be anything.
    EXPECT_EQ(Found("f(\"\xFF\", \"a\" NAME \"$$$/No=x\", \"\\uD800\"); \"$$$/A=x\" NAME; \"y\""),
              "1:17 /No=x;1:40 /A=x;");
}

}  // namespace
