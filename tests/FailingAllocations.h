#pragma once
// Replaces operator new of the test program, whose one source includes this, to let allocations
// fail.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

inline long allocationsLeft = -1;  // before one fails; negative: none fails

// Not inlined, or an optimizing g++ sees free() called on what it takes for another new's block.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    void* const block = allocationsLeft-- == 0 ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
    return block ? block : throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }

// Calls `act` once for each of its allocations, which then fails, and a last time without a
// failure; calls `check(failed)` after each.
template <class Act, class Check>
void FailEachAllocation(Act act, Check check) {
    int failures = 0;
    for (bool reachedTheEnd = false; !reachedTheEnd;) {
        SCOPED_TRACE(failures);
        bool failed = false;
        allocationsLeft = failures;
        try {
            act();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        reachedTheEnd = allocationsLeft >= 0;
        allocationsLeft = -1;
        failures += !reachedTheEnd;
        check(failed);
    }
    EXPECT_LT(10, failures) << "or nothing much was tried";
}
