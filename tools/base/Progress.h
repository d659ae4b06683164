#pragma once
#include <atomic>
#include <cstdint>
#include <stop_token>
#include <string>
#include <thread>

namespace tool {

// While work lasts longer than a second, a line on standard error says what is being done. The line
// disappears at the end. Only when standard error is a terminal.
// Threads: one of its own, which only writes that line.
class Progress {
public:
    // Shows "WORK FILE". Without a total the line counts seconds. Inside another one it shows
    // nothing.
    Progress(const char* work, const std::string& file, std::uint64_t total = 0);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();  // waits for the thread

    void Reach(std::uint64_t done) { reached.store(done, std::memory_order_relaxed); }

private:
    void Show(const std::stop_token& stop) const;

    std::string name;
    std::uint64_t end;
    std::atomic<std::uint64_t> reached{0};
    std::jthread thread;  // the last member: it reads the others
};

}  // namespace tool
