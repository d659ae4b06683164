#pragma once
// The allocator of the host's strings. Short strings come and go fast enough with operator new: a
// pool of our own gained nothing in a measurement, and the standard library's synchronized pool
// took twice as long. So memory checkers see every block.

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
