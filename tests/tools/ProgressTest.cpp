#include "tools/base/Progress.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <string>

namespace {

TEST(Progress, IsToldOnATerminalAfterASecond) {
    int terminal = -1;
    int side = -1;
    if (openpty(&terminal, &side, nullptr, nullptr, nullptr) != 0) {
        GTEST_SKIP() << "this machine has no pseudo-terminals";
    }
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
    std::string shown;
    pollfd more{terminal, POLLIN, 0};
    while (!shown.ends_with("%\r\x1B[K") && poll(&more, 1, 60'000) == 1) {
        char piece[100];
        shown.append(piece, static_cast<std::size_t>(read(terminal, piece, sizeof piece)));
    }
    EXPECT_TRUE(shown.starts_with("\r\x1B[Kwordlex: checking slow: 50 %")) << shown;
    EXPECT_TRUE(shown.ends_with("%\r\x1B[K")) << shown;
    for (const int descriptor : {terminal, side, standardError})
        close(descriptor);
}

}  // namespace
