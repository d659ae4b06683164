#pragma once
// Folders, files and reading them. Paths are UTF-16 and reach the file system as UTF-8, so a file
// whose name is not UTF-8 cannot be named.
//
// Threads:  none; each object serves one thread at a time.

#include <cstdint>
#include <string>

#include "host/vexacore/String.h"

namespace vexacore::filesupport {

// A folder by its path. The default one names no folder and has an empty path.
class Dir {
public:
    Dir() = default;
    explicit Dir(UTF16String path);

    // The folder of the running executable. Throws std::system_error when the system does not know.
    static Dir AppDir();

    UTF16String FullPath() const;

private:
    UTF16String path;
};

enum class StorageType : int { kPlain = 0 };  // a file of the file system

// A file by its path; nothing is opened.
class File {
public:
    File(const UTF16String& path, StorageType type);

    const UTF16String& Path() const noexcept { return path; }

private:
    UTF16String path;
};

// An open file, read from its start.
//
// Owns:     the open file.
// Failure:  every operation throws std::system_error, whose text names the path.
class IPlatformByteStream {
public:
    static constexpr std::uint32_t kRead = 1;  // the one flag: open for reading

    // Throws std::system_error (invalid argument) for flags other than kRead.
    IPlatformByteStream(const File& file, std::uint32_t flags);
    ~IPlatformByteStream();
    IPlatformByteStream(const IPlatformByteStream&) = delete;
    IPlatformByteStream& operator=(const IPlatformByteStream&) = delete;

    std::uint64_t Length() const;  // bytes
    // Reads exactly `count` bytes; fails when the file ends earlier.
    void ReadBlock(void* destination, std::uint64_t count);

private:
    [[noreturn]] void Fail(int error) const;

    std::string path;  // as given to the system
    int descriptor;
};

}  // namespace vexacore::filesupport

namespace vexacore::utility {

class FileUtils {
public:
    // True for a regular file, also through links. False for a pipe or a device: opening or reading
    // one may never end.
    static bool FileExists(const UTF16String& path);

    // Why a path, as the system names it, is not a readable regular file: one line for people.
    // Empty when it is one.
    static std::string WhyUnreadable(const std::string& path);
};

}  // namespace vexacore::utility
