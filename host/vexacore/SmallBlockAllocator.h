#pragma once
// Memory for many short strings: blocks of up to 256 bytes come from free lists by size, larger
// ones from operator new.
//
// Owns:     the blocks of the free lists, for the life of the process; freed blocks are used again
//           for blocks of the same size class and never go back to the system.
// Failure:  std::bad_alloc from operator new, nothing changed.
// Threads:  all calls from any thread; a block may be freed by another thread than took it. Each
//           thread keeps some free blocks of its own, so that most calls take no lock, and gives
//           them to the others when it ends. Usable before main and during process exit.

#include <cstddef>
#include <limits>
#include <new>

namespace vexacore {

class SmallBlocks {
public:
    static constexpr std::size_t kGranule = 16;        // bytes between two size classes
    static constexpr std::size_t kLargestBlock = 256;  // bytes; above, operator new serves

    static void* Allocate(std::size_t bytes);
    // `bytes` is what Allocate was asked for.
    static void Free(void* block, std::size_t bytes) noexcept;
};

// The standard allocator over SmallBlocks. All instances are equal.
template <class T>
class SmallBlockAllocator {
public:
    static_assert(alignof(T) <= SmallBlocks::kGranule);
    using value_type = T;

    SmallBlockAllocator() noexcept = default;
    template <class U>
    SmallBlockAllocator(const SmallBlockAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(SmallBlocks::Allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept {
        SmallBlocks::Free(block, count * sizeof(T));
    }

    template <class U>
    bool operator==(const SmallBlockAllocator<U>&) const noexcept {
        return true;
    }
};

}  // namespace vexacore
