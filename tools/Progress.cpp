#include "tools/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace tool {

namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kStep{100};
constexpr std::uint64_t kCallsPerClock = 256;

}  // namespace

Progress::Progress(std::string work, std::uint64_t total)
    : name(std::move(work)),
      end(total),
      onTerminal(isatty(STDERR_FILENO) != 0),
      next(Clock::now() + kPatience) {}

Progress::~Progress() {
    if (shown) std::fputs("\r\x1B[K", stderr);
}

void Progress::Reach(std::uint64_t done) {
    if (!onTerminal || ++calls % kCallsPerClock != 0 || Clock::now() < next) return;
    const auto percent = static_cast<unsigned>(100.0 * static_cast<double>(done) /
                                               static_cast<double>(end == 0 ? 1 : end));
    std::fprintf(stderr, "\r\x1B[Kwordlex: %s: %u %%", name.c_str(), percent);
    shown = true;
    next = Clock::now() + kStep;
}

}  // namespace tool
