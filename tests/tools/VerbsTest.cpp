// compare, lookup and stats, and what every verb does with files that it cannot use.
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/tools/CommandTest.h"
#include "tools/Progress.h"

namespace {

using VerbsTest = CommandTest;

TEST_F(VerbsTest, CompareTellsOneLineADifference) {
    Write("a", "\"Same=x\"\n\"Old=o\"\n\"Changed=one\"");
    Write("b", "\"Changed=two\\n\"\n\"New=n\"\n\"Same=x\"");
    EXPECT_EQ(Run("wordlex compare a a"), (Outcome{0, ""}));
    EXPECT_EQ(Run("wordlex compare a b"),
              (Outcome{1,
                       "changed \"Changed\": \"one\" -> \"two\\n\"\nadded \"New\": \"n\"\n"
                       "removed \"Old\": \"o\"\n"}));
    EXPECT_EQ(Run("wordlex compare b a --format=json").out,
              "{\"change\":\"changed\",\"key\":\"Changed\",\"old\":\"two\\n\",\"new\":\"one\"}\n"
              "{\"change\":\"removed\",\"key\":\"New\",\"old\":\"n\"}\n"
              "{\"change\":\"added\",\"key\":\"Old\",\"new\":\"o\"}\n");
    EXPECT_EQ(Run("wordlex compile a -o c --no-keys && wordlex compile b -o d --no-keys && "
                  "wordlex compare c d"),
              (Outcome{1,
                       "changed #0: \"x\" -> \"two\\n\"\nchanged #1: \"o\" -> \"n\"\n"
                       "changed #2: \"one\" -> \"x\"\n"}));
}

TEST_F(VerbsTest, LookupAnswersAsTheApplicationWould) {
    Write("a", "\"/A=^1 of <param name=\\\"n\\\"/>\"\n\"/B=a\"\n\"/Empty=\"");
    Write("b", "\n\"/B=b\"");
    Write("m", "\"/M=main\"\n\"/B=m\"");
    ASSERT_EQ(Run("wordlex compile m -o m.dat").exitCode, 0);
    const struct {
        int line;
        std::string arguments;
        Outcome outcome;
    } rows[] = {
        {__LINE__, "a /A --replace 1=3 --replace n=4", {0, "3 of 4\n"}},
        {__LINE__, "a b '($$$/B=x)'", {0, "b\n"}},
        {__LINE__, "a /Empty=x", {0, "\n"}},
        {__LINE__, "a '$$$/C=x^ny'", {1, "x\ny\n"}},
        {__LINE__, "a /C", {1, ""}},
        {__LINE__, "a /M --main=m", {0, "main\n"}},
        {__LINE__, "a --id=0 --main=m.dat", {0, "main\n"}},
        {__LINE__, "m.dat --id=2", {1, ""}},
        {__LINE__,
         "b /B --main=m --explain",
         {0,
          "b\nkey \"/B\"\n  b:2:2: \"b\", the answer\n"
          "  m:2:2: \"m\" in the main dictionary, not asked\n"}},
        {__LINE__,
         "a b /B --explain",
         {0, "b\nkey \"/B\"\n  a:2:2: \"a\", replaced\n  b:2:2: \"b\", the answer\n"}},
        {__LINE__,
         "a m.dat --id=1 --explain",
         {0,
          "m\nid 1: the key \"/B\"\n  a:2:2: \"a\", hidden by a version 2 file\n"
          "  m.dat: \"m\", the answer\n"}},
        {__LINE__,
         "a '/C=x' --explain",
         {1, "x\nkey \"/C\"\n  in none of the files: the answer is the key's default text\n"}},
        {__LINE__,
         "a '$C'",
         {2, "", "wordlex: \"$C\" is no key: it is empty, or begins with \"$\" but not \"$$$\"\n"}},
        {__LINE__, "a", {2, "", "wordlex: KEY is required (try --help)\n"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(Run("wordlex lookup " + row.arguments), row.outcome);
    }
}

TEST_F(VerbsTest, StatsCountsEntriesAndBuckets) {
    Write("reference", "\"A=1\"\n\"B=2\"\n\"C=3\"");
    Write("a", "\"A=eins\"\n\"B=2\"\n\"AA=x\"");
    EXPECT_EQ(Run("wordlex compile a -o b --locale=de_DE --endian=big && "
                  "wordlex stats b --reference=reference"),
              (Outcome{0,
                       "b\n"
                       "  version     Wordlex Binary Format 2.7, big-endian\n"
                       "  locale      de_DE\n"
                       "  entries     3\n"
                       "  bytes       145, of keys 4, of values 12\n"
                       "  buckets     1021, mean 0.00, largest 1\n"
                       "          0    1018 ########################################\n"
                       "          1       3 #\n"
                       "  translated  1 of 3 (33.3 %), 1 as the reference, 1 missing\n"}));
}

TEST_F(VerbsTest, WhatCannotBeUsedGivesOneLineAndExitCodeTwo) {
    Write("a", "\"A=1\"");
    Write("bad", "\"$A=1\"");
    Write("large", "\"A=" + std::string(30000, 'x') + "\"\n\"B=" + std::string(30000, 'x') +
                       "\"\n\"C=" + std::string(30000, 'x') + "\"");
    std::filesystem::create_directory(folder / "work/folder");
    Write("secret", "\"A=1\"");
    std::filesystem::permissions(folder / "work/secret", std::filesystem::perms::none);
    const bool canReadAll = access((folder / "work/secret").c_str(), R_OK) == 0;
    const struct {
        int line;
        std::string command;
        std::string reason;
    } rows[] = {
        {__LINE__, "wordlex", "A subcommand is required"},
        {__LINE__, "wordlex nope", "there is no verb \"nope\""},
        {__LINE__, "wordlex check --nope a", "--nope"},
        {__LINE__, "wordlex lookup a /A --replace 1", "N=TEXT is expected"},
        {__LINE__, "wordlex compile a", "--output is required"},
        {__LINE__, "wordlex check nope", "nope: cannot be read: No such file"},
        {__LINE__, "wordlex compare - - <a", "standard input is named twice"},
        {__LINE__, "wordlex dump folder", "folder: cannot be read: Is a directory"},
        {__LINE__, "wordlex stats bad", "bad:1:2: the key begins with"},
        {__LINE__, "wordlex compare a bad", "bad:1:2: the key begins with"},
        {__LINE__, "wordlex lookup bad /A", "bad:1:2: the key begins with"},
        {__LINE__, "wordlex compile a -o folder", "folder: cannot be written: Is a directory"},
        {__LINE__, "wordlex compile a -o nope/b", "nope/b: cannot be written: No such file"},
        {__LINE__, "wordlex compile a -o /dev/full", "/dev/full: cannot be written: No space"},
        {__LINE__, "wordlex dump a >/dev/full", "standard output: cannot be written: No space"},
        {__LINE__, "wordlex check bad >/dev/full", "standard output: cannot be written: No space"},
        {__LINE__, "wordlex --help >/dev/full", "standard output: cannot be written: No space"},
        {__LINE__, "ulimit -f 8; trap '' XFSZ; wordlex compile large -o b",
         "b: cannot be written: File too large"},
        {__LINE__, "{ wordlex dump large; echo $? >code; } | true; exit $(cat code; rm code)",
         "standard output: cannot be written: Broken pipe"},
        {__LINE__, canReadAll ? "wordlex stats nope" : "wordlex stats secret", "cannot be read: "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const Outcome outcome = Run(row.command);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("wordlex: ")) << outcome;
        EXPECT_NE(outcome.err.find(row.reason), std::string::npos) << outcome;
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome;
    }
    EXPECT_EQ(Run("ls -A").out, "a\nbad\nfolder\nlarge\nsecret\n");
}

TEST_F(VerbsTest, OutputKeepsLinksAndTakesItsModeFromTheMask) {
    Write("a", "\"A=1\"");
    Write("target", "old");
    EXPECT_EQ(Run("ln -s target link && umask 027 && wordlex compile a -o link && "
                  "readlink link && wordlex dump target && wordlex dump a -o new && "
                  "stat -c %a new target"),
              (Outcome{0, "target\n\"$$$A=1\"\n640\n640\n"}));
}

TEST_F(VerbsTest, ProgressIsToldOnATerminalAfterASecond) {
    int terminal = -1;
    int side = -1;
    ASSERT_EQ(openpty(&terminal, &side, nullptr, nullptr, nullptr), 0);
    const int standardError = dup(STDERR_FILENO);
    dup2(side, STDERR_FILENO);
    { const tool::Progress quick("reading", "folder/quick"); }
    {
        tool::Progress slow("checking", "folder/slow", 200);
        slow.Reach(100);
        const auto begin = std::chrono::steady_clock::now();
        pollfd shown{terminal, POLLIN, 0};
        EXPECT_EQ(poll(&shown, 1, 60'000), 1);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(900));
    }
    dup2(standardError, STDERR_FILENO);
    char told[1000] = {};
    EXPECT_GT(read(terminal, told, sizeof told - 1), 0);
    EXPECT_TRUE(std::string_view(told).starts_with("\r\x1B[Kwordlex: checking slow: 50 %")) << told;
    EXPECT_TRUE(std::string_view(told).ends_with("%\r\x1B[K")) << told;
    for (const int descriptor : {terminal, side, standardError})
        close(descriptor);
}

TEST_F(VerbsTest, HelpAndVersionSucceed) {
    EXPECT_EQ(Run("wordlex --version"), (Outcome{0, "wordlex 5.1\n"}));
    for (const std::string verb : {"check", "compile", "dump", "compare", "lookup", "stats"}) {
        const Outcome help = Run("wordlex " + verb + " --help");
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_NE(help.out.find("Usage: wordlex " + verb), std::string::npos) << help;
    }
}

}  // namespace
