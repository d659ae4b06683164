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

constexpr std::size_t kBlocksPerRefill = 32;

struct FreeBlock {
    FreeBlock* next;
};

// The free blocks of one size. Without a destructor, so that strings of other static objects may
// outlive it.
class SizeClass {
public:
    void* Take(std::size_t blockBytes) {
        const std::lock_guard lock(mutex);
        if (!free) Refill(blockBytes);
        return std::exchange(free, free->next);
    }

    void Give(void* block) noexcept {
        const std::lock_guard lock(mutex);
        free = new (block) FreeBlock{free};
    }

private:
    void Refill(std::size_t blockBytes) {
        auto* chunk = static_cast<std::byte*>(::operator new(kBlocksPerRefill* blockBytes));
        for (std::size_t i = kBlocksPerRefill; i-- > 0;)
            free = new (chunk + i * blockBytes) FreeBlock{free};
    }

    std::mutex mutex;
    FreeBlock* free = nullptr;
};
static_assert(std::is_trivially_destructible_v<SizeClass>);

constinit std::array<SizeClass, SmallBlocks::kLargestBlock / SmallBlocks::kGranule> sizeClasses;

bool IsPooled(std::size_t bytes) { return kPooled && bytes <= SmallBlocks::kLargestBlock; }

std::size_t SizeClassOf(std::size_t bytes) {
    return bytes == 0 ? 0 : (bytes - 1) / SmallBlocks::kGranule;
}

}  // namespace

void* SmallBlocks::Allocate(std::size_t bytes) {
    if (!IsPooled(bytes)) return ::operator new(bytes);
    const std::size_t index = SizeClassOf(bytes);
    return sizeClasses[index].Take((index + 1) * kGranule);
}

void SmallBlocks::Free(void* block, std::size_t bytes) noexcept {
    if (!IsPooled(bytes)) return ::operator delete(block);
    sizeClasses[SizeClassOf(bytes)].Give(block);
}

}  // namespace vexacore
