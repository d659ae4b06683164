#pragma once
// Locale names in order of preference, as they were written: neither parsed nor normalized, and
// with any duplicates kept.
//
// Owns:    a copy of each name.
// Failure: exhausted memory throws std::bad_alloc and leaves the list as it was.
// Threads: a plain value.

#include <cstddef>
#include <string>
#include <vector>

class CLocaleList {
public:
    CLocaleList() = default;
    // The names in `names`, which may be null; see FromString.
    explicit CLocaleList(const char* names);

    // Replaces the list by the names in `names` and returns how many they are; none for null. ASCII
    // letters and digits, '-' and '_' make up a name, any run of other bytes separates two.
    std::size_t FromString(const char* names);
    void AddLocale(std::string name);
    void clear() noexcept;

    std::size_t size() const noexcept;
    bool empty() const noexcept;
    const std::string& operator[](std::size_t index) const;  // `index` < size(), unchecked

private:
    std::vector<std::string> locales;
};
