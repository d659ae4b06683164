#pragma once
// The allocator of the host's strings. It uses operator new, which is fast enough for short
// strings: in a measurement, a pool of our own gained nothing, and the standard library's
// synchronized pool took twice as long. Memory checkers therefore see every block.

#include <cstddef>
#include <memory>

namespace vexacore {

// Stateless; all instances are equal.
template <class T>
struct SmallBlockAllocator {
    using value_type = T;

    SmallBlockAllocator() noexcept = default;
    template <class U>
    SmallBlockAllocator(const SmallBlockAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* block, std::size_t count) noexcept {
        std::allocator<T>().deallocate(block, count);
    }

    template <class U>
    bool operator==(const SmallBlockAllocator<U>&) const noexcept {
        return true;
    }
};

}  // namespace vexacore
