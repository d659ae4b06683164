#include "wordlex/catalog/platform/File.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "wordlex/catalog/Loaders.h"

namespace lexon::detail {

File::File(const std::filesystem::path& path) : name(path) {
    struct stat status {};
    // Checked before opening it: opening a device can have effects.
    if (::stat(path.c_str(), &status) != 0) {
        const bool missing = errno == ENOENT || errno == ENOTDIR;
        Fail(missing ? LoadError::Code::kMissing : LoadError::Code::kUnreadable, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw LoadFault{
            {.code = LoadError::Code::kNotAFile, .file = path, .reason = "not a regular file"}};
    }
    // Does not wait for a file of another kind that has replaced it meanwhile.
    descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        const int error = errno;
        if (descriptor >= 0) ::close(descriptor);
        Fail(LoadError::Code::kUnreadable, error);
    }
    size = static_cast<std::size_t>(status.st_size);
}

File::~File() { ::close(descriptor); }

std::size_t File::ReadAt(std::size_t offset, std::span<std::byte> into) const {
    std::size_t count = 0;
    while (count != into.size()) {
        const ssize_t got = ::pread(descriptor, into.data() + count, into.size() - count,
                                    static_cast<off_t>(offset + count));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) Fail(LoadError::Code::kUnreadable, errno);
        if (got == 0) break;
        count += static_cast<std::size_t>(got);
    }
    return count;
}

std::shared_ptr<const void> File::Map() const {
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED) Fail(LoadError::Code::kUnreadable, errno);
    return {memory,
            [length = size](const void* mapped) { ::munmap(const_cast<void*>(mapped), length); }};
}

void File::Fail(LoadError::Code code, int error) const {
    throw LoadFault{{.code = error == ENOMEM ? LoadError::Code::kOutOfMemory : code,
                     .file = name,
                     .reason = std::generic_category().message(error)}};
}

}  // namespace lexon::detail
