#pragma once
#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

// A line on standard error that counts up while work lasts longer than a second, and is gone when
// the work is done. Only where standard error is a terminal.
class Progress {
public:
    Progress(std::string work, std::uint64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Reach(std::uint64_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::string name;
    std::uint64_t end;
    bool onTerminal;
    bool shown = false;
    std::uint64_t calls = 0;
    Clock::time_point next;
};

}  // namespace tool
