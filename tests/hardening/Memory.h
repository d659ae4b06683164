#pragma once
// Replaces the global operator new of a test program: it counts, and fails on request.
#include <gtest/gtest.h>

#include <cstdint>
#include <new>

namespace hardening {

// Blocks that live now, and bytes ever requested; of all threads.
std::int64_t LiveBlocks() noexcept;
std::uint64_t AllocatedBytes() noexcept;

// While it lives, allocation `index` (from 0) of this thread fails, once.
class FailingAllocation {
public:
    explicit FailingAllocation(long index) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    bool Happened() const noexcept;
};

enum class Outcome { kDone, kThrew, kSwallowed };  // the last: an allocation failed, nothing threw

enum class Blocks { kAllFreed, kKeptByHost };  // the host remembers its events

// Calls attempt(inject) until no allocation is left to fail. inject(work) runs `work` with the
// first, second ... of its allocations failing. No attempt may leak a block, except with
// kKeptByHost. Returns the number of failures.
template <class Attempt>
long ForEveryFailingAllocation(Attempt attempt, Blocks blocks = Blocks::kAllFreed) {
    constexpr long kNone = -1;  // the first, whole attempt makes what is kept for good
    for (long index = kNone;; ++index) {
        SCOPED_TRACE(index);
        const std::int64_t before = LiveBlocks();
        bool failed = false;
        attempt([&](auto work) {
            const FailingAllocation failing(index);
            Outcome outcome = Outcome::kDone;
            try {
                work();
                if (failing.Happened()) outcome = Outcome::kSwallowed;
            } catch (const std::bad_alloc&) {
                outcome = Outcome::kThrew;
            }
            failed = outcome != Outcome::kDone;
            return outcome;
        });
        if (index == kNone) continue;
        if (blocks == Blocks::kAllFreed) {
            EXPECT_EQ(before, LiveBlocks());
        }
        if (!failed) return index;
    }
}

}  // namespace hardening
