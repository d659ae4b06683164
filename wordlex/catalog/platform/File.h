#pragma once
// Regular files, and mappings of them, on this system. Failures are LoadFaults that name the file.

#include <filesystem>
#include <memory>

#include "wordlex/catalog/Store.h"

namespace lexon::detail {

// A regular file, open for reading. Other files are refused without being opened or waited for.
class File {
public:
    explicit File(const std::filesystem::path& path);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::size_t Size() const noexcept { return size; }
    // Reads up to the whole span from `offset` on; returns the number of bytes, fewer at the end.
    std::size_t ReadAt(std::size_t offset, std::span<std::byte> into) const;
    // The whole file, which is not empty; the keeper of the mapping is its memory.
    std::shared_ptr<const void> Map() const;

private:
    [[noreturn]] void Fail(LoadError::Code code, int error) const;

    const std::filesystem::path& name;
    int descriptor = -1;
    std::size_t size = 0;
};

}  // namespace lexon::detail
