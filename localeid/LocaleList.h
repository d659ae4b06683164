#pragma once
// Locale names in order of preference, exactly as written: not parsed, not normalized, duplicates
// kept.
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

    // Replaces the list by the names in `names` and returns their number; 0 for null. A name
    // consists of ASCII letters and digits, '-' and '_'. Any run of other bytes separates two
    // names.
    std::size_t FromString(const char* names);
    void AddLocale(std::string name);
    void clear() noexcept;

    std::size_t size() const noexcept;
    bool empty() const noexcept;
    const std::string& operator[](std::size_t index) const;  // `index` < size(), unchecked

private:
    std::vector<std::string> locales;
};
