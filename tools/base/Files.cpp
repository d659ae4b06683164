#include "tools/base/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;  // minus the umask
constexpr mode_t kAllModeBits = 07777;
constexpr mode_t kAnyoneWrites = 0222;

[[noreturn]] void Fail(const std::string& name, const char* what, int error) {
    throw Failure(name + ": " + what + ": " + std::strerror(error));
}

// An open file.
// Owns: the descriptor.
class Descriptor {
public:
    explicit Descriptor(int opened) : number(opened) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    int Get() const { return number; }
    // Some file systems report a failed write only here.
    bool Close() { return close(std::exchange(number, -1)) == 0; }

private:
    int number;
};

// The name of an incomplete file, for signal handlers; null when there is none.
std::atomic<const char*> unfinished{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free);

// Then ends the command as the signal does: SA_RESETHAND has restored the default.
extern "C" void RemoveUnfinished(int signal) {
    if (const char* const name = unfinished) unlink(name);
    raise(signal);
}

std::string ReadAll(int descriptor, const std::string& name) {
    std::string bytes;
    std::vector<char> block(1 << 16);
    for (;;) {
        const ssize_t count = read(descriptor, block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) Fail(name, "cannot be read", errno);
        if (count == 0) return bytes;
        bytes.append(block.data(), static_cast<std::size_t>(count));
    }
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// A new file beside the target, under an unused name.
int OpenBeside(const fs::path& target, std::string& name) {
    const std::string stem = (target.parent_path() / ("." + target.filename().string())).string() +
                             '.' + std::to_string(getpid());
    for (int attempt = 0;; ++attempt) {
        name = stem + '.' + std::to_string(attempt);
        const int opened =
            open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
        if (opened >= 0 || errno != EEXIST) return opened;
    }
}

void WriteInPlace(const std::string& path, std::string_view bytes) {
    Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.Get() < 0 || !WriteAll(file.Get(), bytes) || !file.Close()) {
        Fail(path, "cannot be written", errno);
    }
}

// Sets the owner and the mode of the replaced file on a new file.
bool TakeOver(int descriptor, const struct stat& replaced) {
    struct stat own {};
    if (fstat(descriptor, &own) != 0) return false;
    const bool sameOwner = own.st_uid == replaced.st_uid && own.st_gid == replaced.st_gid;
    return (sameOwner || fchown(descriptor, replaced.st_uid, replaced.st_gid) == 0) &&
           fchmod(descriptor, replaced.st_mode & kAllModeBits) == 0;
}

// `replaced` is null when there is no file yet.
void Replace(const fs::path& target, const struct stat* replaced, std::string_view bytes) {
    std::string beside;
    Descriptor file(OpenBeside(target, beside));
    if (file.Get() < 0) Fail(target, "cannot be written", errno);
    unfinished = beside.c_str();
    const bool done = (replaced == nullptr || TakeOver(file.Get(), *replaced)) &&
                      WriteAll(file.Get(), bytes) && file.Close() &&
                      std::rename(beside.c_str(), target.c_str()) == 0;
    const int error = errno;
    unfinished = nullptr;
    if (done) return;
    unlink(beside.c_str());
    Fail(target, "cannot be written", error);
}

// The target of a link to a file that does not exist yet.
fs::path EndOfLinks(fs::path path) {
    while (fs::is_symlink(path))
        path = path.parent_path() / fs::read_symlink(path);
    return path;
}

}  // namespace

void HandleSignals() {
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction ending {};
    ending.sa_handler = RemoveUnfinished;
    ending.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM}) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &ending, nullptr);  // as under nohup
    }
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code absent;
    return fs::equivalent(a, b, absent);
}

void RefuseInput(const std::string& output, const std::vector<std::string>& inputs) {
    const auto isOutput = [&output](const std::string& input) { return IsSameFile(output, input); };
    std::error_code absent;
    if (fs::is_regular_file(output, absent) && std::ranges::any_of(inputs, isOutput)) {
        throw Failure(output + ": is an input too, and would be lost: name another output");
    }
}

void RequireWritable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return;
    if (S_ISDIR(status.st_mode)) Fail(path, "cannot be written", EISDIR);
    if (!S_ISREG(status.st_mode)) return;
    // Renaming ignores the permissions of the file itself, and root has every permission.
    if ((status.st_mode & kAnyoneWrites) == 0) Fail(path, "is read-only", EACCES);
    if (access(path.c_str(), W_OK) != 0) Fail(path, "cannot be written", errno);
}

std::string ReadInput(const std::string& path) {
    if (path == "-") {
        static bool alreadyRead = false;
        if (std::exchange(alreadyRead, true)) throw Failure("standard input is named twice");
        return ReadAll(STDIN_FILENO, "standard input");
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() < 0) Fail(path, "cannot be read", errno);
    return ReadAll(file.Get(), path);
}

void WriteOutput(const std::string& path, std::string_view bytes) {
    if (path == "-") return WriteStandardOutput(bytes);
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return Replace(errno == ENOENT ? EndOfLinks(path) : fs::path(path), nullptr, bytes);
    }
    RequireWritable(path);
    if (!S_ISREG(status.st_mode)) return WriteInPlace(path, bytes);
    Replace(fs::canonical(path), &status, bytes);  // a link stays a link
}

void WriteStandardOutput(std::string_view bytes) {
    if (WriteAll(STDOUT_FILENO, bytes)) return;
    // The signal ends the command earlier, unless whoever started the command ignores it.
    if (errno == EPIPE) throw ReaderGone();
    Fail("standard output", "cannot be written", errno);
}

}  // namespace tool
