#include "tools/Progress.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <string_view>

namespace {

TEST(Progress, IsToldOnATerminalAfterASecond) {
    int terminal = -1;
    int side = -1;
    if (openpty(&terminal, &side, nullptr, nullptr, nullptr) != 0) {
        GTEST_SKIP() << "this machine gives no pseudo-terminals";
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
    char told[1000] = {};
    EXPECT_GT(read(terminal, told, sizeof told - 1), 0);
    EXPECT_TRUE(std::string_view(told).starts_with("\r\x1B[Kwordlex: checking slow: 50 %")) << told;
    EXPECT_TRUE(std::string_view(told).ends_with("%\r\x1B[K")) << told;
    for (const int descriptor : {terminal, side, standardError})
        close(descriptor);
}

}  // namespace
