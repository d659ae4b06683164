#include "tools/base/Progress.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <mutex>

namespace tool {

namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kStep{100};
constexpr char kClear[] = "\r\x1B[K";

std::atomic<bool> isShown{false};

}  // namespace

Progress::Progress(const char* work, const std::string& file, std::uint64_t total)
    : name(std::string(work) + ' ' + std::filesystem::path(file).filename().string()), end(total) {
    if (isatty(STDERR_FILENO) != 0 && !isShown.exchange(true)) {
        thread = std::jthread([this](const std::stop_token& stop) { Show(stop); });
    }
}

Progress::~Progress() {
    if (!thread.joinable()) return;
    thread.request_stop();
    thread.join();
    isShown = false;
}

void Progress::Show(const std::stop_token& stop) const {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    const auto stopped = [&stop] { return stop.stop_requested(); };
    if (never.wait_for(lock, stop, kPatience, stopped)) return;
    const auto begin = std::chrono::steady_clock::now() - kPatience;
    do {
        const auto passed = std::chrono::steady_clock::now() - begin;
        const auto shown = end != 0 ? 100 * reached.load(std::memory_order_relaxed) / end
                                    : static_cast<std::uint64_t>(passed / std::chrono::seconds{1});
        std::fprintf(stderr, "%swordlex: %s: %llu %s", kClear, name.c_str(),
                     static_cast<unsigned long long>(shown), end != 0 ? "%" : "s");
    } while (!never.wait_for(lock, stop, kStep, stopped));
    std::fputs(kClear, stderr);
}

}  // namespace tool
