#include "host/vexacore/FileSupport.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/vexacore/Utility.h"

namespace vexacore::filesupport {

Dir::Dir(UTF16String newPath) : path(std::move(newPath)) {}

Dir Dir::AppDir() {
    const auto executable = std::filesystem::read_symlink("/proc/self/exe");
    return Dir(utility::StdToUTF16String(executable.parent_path().native()));
}

UTF16String Dir::FullPath() const { return path; }

File::File(const UTF16String& newPath, StorageType) : path(newPath) {}

IPlatformByteStream::IPlatformByteStream(const File& file, std::uint32_t flags)
    : path(utility::UTF16toStdString(file.Path())), descriptor(-1) {
    if (flags != kRead) Fail(EINVAL);
    // Does not wait for the writer of a pipe.
    descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) Fail(errno);
}

IPlatformByteStream::~IPlatformByteStream() { close(descriptor); }

std::uint64_t IPlatformByteStream::Length() const {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) Fail(errno);
    return static_cast<std::uint64_t>(status.st_size);
}

void IPlatformByteStream::ReadBlock(void* destination, std::uint64_t count) {
    auto* next = static_cast<char*>(destination);
    while (count > 0) {
        const ssize_t got = read(descriptor, next, count);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) Fail(got < 0 ? errno : EIO);
        next += got;
        count -= static_cast<std::uint64_t>(got);
    }
}

void IPlatformByteStream::Fail(int error) const {
    throw std::system_error(error, std::generic_category(), path);
}

}  // namespace vexacore::filesupport

namespace vexacore::utility {

bool FileUtils::FileExists(const UTF16String& path) {
    std::error_code unreadable;
    const auto status = std::filesystem::status(UTF16toStdString(path), unreadable);
    return std::filesystem::is_regular_file(status);
}

std::string FileUtils::WhyUnreadable(const std::string& path) {
    const auto system = [] { return std::generic_category().message(errno); };
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return system();
    if (S_ISDIR(status.st_mode)) return "a folder";
    if (!S_ISREG(status.st_mode)) return "not a regular file";
    return access(path.c_str(), R_OK) == 0 ? std::string() : system();
}

}  // namespace vexacore::utility
