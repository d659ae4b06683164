#pragma once
#include <algorithm>
#include <cstddef>
#include <memory>

namespace lexon_private {

// A growable array of trivially copyable units that is reused rather than shrunk.
// Units: capacity and length count units of T.
template <class T>
class Buffer {
public:
    explicit Buffer(std::size_t initialCapacity)
        : data(new T[initialCapacity]), capacity(initialCapacity) {}

    T* GetData() noexcept { return data.get(); }
    const T* GetData() const noexcept { return data.get(); }
    std::size_t GetCapacity() const noexcept { return capacity; }
    std::size_t GetLength() const noexcept { return length; }
    void SetLength(std::size_t units) noexcept { length = units; }

    // Makes room for `needed` units in all, growing by half as often as needed. Keeps the units in
    // use. When memory runs out, the buffer is as before.
    void Reserve(std::size_t needed) {
        if (needed <= capacity) return;
        std::size_t larger = capacity;
        while (larger < needed) {
            const auto grown = static_cast<std::size_t>(static_cast<double>(larger) * 1.5);
            larger = std::max(grown, larger + 1);  // half of 0 or 1 is 0
        }
        std::unique_ptr<T[]> moved(new T[larger]);
        std::copy_n(data.get(), length, moved.get());
        data = std::move(moved);
        capacity = larger;
    }
    void Append(T unit) {
        Reserve(length + 1);
        data[length++] = unit;
    }
    void Append(const T* units, std::size_t count) {
        Reserve(length + count);
        std::copy_n(units, count, data.get() + length);
        length += count;
    }

private:
    std::unique_ptr<T[]> data;
    std::size_t capacity;
    std::size_t length = 0;
};

}  // namespace lexon_private
