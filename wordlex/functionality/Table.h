#pragma once
#include <cstddef>
#include <memory>
#include <utility>

namespace lexon_private {

// Frees an array unless it is part of something larger that has an owner.
template <class T>
struct DeleteUnlessBorrowed {
    bool borrowed;  // false when made without a value
    void operator()(T* items) const noexcept {
        if (!borrowed) delete[] items;
    }
};
template <class T>
using BorrowableArray = std::unique_ptr<T[], DeleteUnlessBorrowed<T>>;

// A fixed number of items in one allocation. Items of a plain type start uninitialized.
// Owns: its items. A table that was moved from is empty.
template <class T>
class Table {
public:
    Table() noexcept = default;
    explicit Table(std::size_t itemCount)
        : items(std::make_unique_for_overwrite<T[]>(itemCount)), count(itemCount) {}
    Table(Table&& other) noexcept
        : items(std::move(other.items)), count(std::exchange(other.count, 0)) {}
    Table& operator=(Table&& other) noexcept {
        items = std::move(other.items);
        count = std::exchange(other.count, 0);
        return *this;
    }

    T* data() noexcept { return items.get(); }
    const T* data() const noexcept { return items.get(); }
    std::size_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }
    T& operator[](std::size_t i) noexcept { return items[i]; }
    const T& operator[](std::size_t i) const noexcept { return items[i]; }
    T* begin() noexcept { return items.get(); }
    T* end() noexcept { return items.get() + count; }
    const T* begin() const noexcept { return items.get(); }
    const T* end() const noexcept { return items.get() + count; }

private:
    std::unique_ptr<T[]> items;
    std::size_t count = 0;
};

}  // namespace lexon_private
