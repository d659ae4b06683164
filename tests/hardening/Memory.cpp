#include "tests/hardening/Memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace hardening {

namespace {

constexpr long kNever = -1;

std::atomic<std::int64_t> liveBlocks = 0;
std::atomic<std::uint64_t> allocatedBytes = 0;
thread_local long untilFailure = kNever;
thread_local bool happened = false;

void* Allocate(std::size_t bytes) {
    if (untilFailure != kNever && untilFailure-- == 0) {
        happened = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(bytes > 0 ? bytes : 1);
    if (!block) throw std::bad_alloc();
    ++liveBlocks;
    allocatedBytes += bytes;
    return block;
}

void Free(void* block) noexcept {
    if (block) --liveBlocks;
    std::free(block);
}

}  // namespace

std::int64_t LiveBlocks() noexcept { return liveBlocks; }
std::uint64_t AllocatedBytes() noexcept { return allocatedBytes; }

FailingAllocation::FailingAllocation(long index) noexcept {
    untilFailure = index;
    happened = false;
}
FailingAllocation::~FailingAllocation() { untilFailure = kNever; }
bool FailingAllocation::Happened() const noexcept { return happened; }

}  // namespace hardening

// The array forms of the standard library call these, those of the sanitizers do not.
void* operator new(std::size_t bytes) { return hardening::Allocate(bytes); }
void* operator new[](std::size_t bytes) { return hardening::Allocate(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    try {
        return hardening::Allocate(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* block) noexcept { hardening::Free(block); }
void operator delete[](void* block) noexcept { hardening::Free(block); }
void operator delete(void* block, std::size_t) noexcept { hardening::Free(block); }
void operator delete[](void* block, std::size_t) noexcept { hardening::Free(block); }
