#include "host/vexacore/SmallBlockAllocator.h"

#include <array>
#include <mutex>
#include <type_traits>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VEXACORE_EVERY_BLOCK_BY_NEW
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VEXACORE_EVERY_BLOCK_BY_NEW
#endif

namespace vexacore {

namespace {

// A pool would hide overruns, uses after free and leaks from the address sanitizer.
#ifdef VEXACORE_EVERY_BLOCK_BY_NEW
constexpr bool kPooled = false;
#else
constexpr bool kPooled = true;
#endif

constexpr std::size_t kSizeClasses = SmallBlocks::kLargestBlock / SmallBlocks::kGranule;
// How many blocks move between one thread and the others at once; a thread holds up to two such
// batches of each size.
constexpr std::size_t kBatch = 32;

struct FreeBlock {
    FreeBlock* next;
};

struct FreeList {
    void Push(void* block) { first = new (block) FreeBlock{first}; }
    void* Pop() { return std::exchange(first, first->next); }

    FreeBlock* first = nullptr;
};

// The free blocks of one size that no thread holds. Without a destructor, so that strings of other
// static objects may outlive it.
class SharedList {
public:
    // Moves up to `most` blocks to the list of a thread, at least one; tells how many.
    std::size_t Fill(FreeList& list, std::size_t blockBytes, std::size_t most) {
        const std::lock_guard lock(mutex);
        if (!free.first) AddChunk(blockBytes);
        std::size_t moved = 0;
        for (; moved < most && free.first; ++moved)
            list.Push(free.Pop());
        return moved;
    }

    void Return(FreeList& list, std::size_t count) noexcept {
        const std::lock_guard lock(mutex);
        while (count-- > 0)
            free.Push(list.Pop());
    }

private:
    void AddChunk(std::size_t blockBytes) {
        auto* const chunk = static_cast<std::byte*>(::operator new(kBatch* blockBytes));
        for (std::size_t i = kBatch; i-- > 0;)
            free.Push(chunk + i * blockBytes);
    }

    std::mutex mutex;
    FreeList free;
};
static_assert(std::is_trivially_destructible_v<SharedList>);

constinit std::array<SharedList, kSizeClasses> sharedLists;

// The free blocks of one size that this thread holds. They, too, have no destructor: strings may
// come and go until the very end of a thread.
struct ThreadList {
    FreeList free;
    std::size_t count = 0;
};
thread_local constinit std::array<ThreadList, kSizeClasses> threadLists;
thread_local constinit bool threadEnds = false;

// Gives what a thread holds to all threads when it ends, and from then on each block at once.
struct ReturnAtThreadExit {
    ~ReturnAtThreadExit() {
        threadEnds = true;
        for (std::size_t i = 0; i < kSizeClasses; ++i)
            sharedLists[i].Return(threadLists[i].free, std::exchange(threadLists[i].count, 0));
    }
    void Touch() const noexcept {}
};
thread_local constinit ReturnAtThreadExit returnAtThreadExit;

// The first use of a thread-local object registers its destructor; once that has run, it is not
// touched any more.
void ArmReturn() {
    if (!threadEnds) returnAtThreadExit.Touch();
}

bool IsPooled(std::size_t bytes) { return kPooled && bytes <= SmallBlocks::kLargestBlock; }

std::size_t SizeClassOf(std::size_t bytes) {
    return bytes == 0 ? 0 : (bytes - 1) / SmallBlocks::kGranule;
}

}  // namespace

void* SmallBlocks::Allocate(std::size_t bytes) {
    if (!IsPooled(bytes)) return ::operator new(bytes);
    const std::size_t index = SizeClassOf(bytes);
    ThreadList& list = threadLists[index];
    if (list.count == 0) {
        ArmReturn();
        list.count =
            sharedLists[index].Fill(list.free, (index + 1) * kGranule, threadEnds ? 1 : kBatch);
    }
    --list.count;
    return list.free.Pop();
}

void SmallBlocks::Free(void* block, std::size_t bytes) noexcept {
    if (!IsPooled(bytes)) return ::operator delete(block);
    const std::size_t index = SizeClassOf(bytes);
    ThreadList& list = threadLists[index];
    if (list.count == 0) ArmReturn();
    list.free.Push(block);
    ++list.count;
    if (list.count <= 2 * kBatch && !threadEnds) return;
    const std::size_t returned = threadEnds ? list.count : kBatch;
    sharedLists[index].Return(list.free, returned);
    list.count -= returned;
}

}  // namespace vexacore
