#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <thread>

#include "wordlex/catalog/Catalog.h"

namespace lexon {

namespace {

class Descriptor {
public:
    explicit Descriptor(int opened) : descriptor(opened) {
        if (descriptor < 0) throw std::system_error(errno, std::generic_category());
    }
    ~Descriptor() { ::close(descriptor); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const noexcept { return descriptor; }

private:
    int descriptor;
};

}  // namespace

// Watches the folder, not the file: editors and compilers replace the file.
struct Watcher::State {
    State(ReloadingCatalog& watched, std::function<void(const LoadError*)> told)
        : catalog(watched),
          reloaded(std::move(told)),
          name(watched.File().filename()),
          notices(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
          stop(::eventfd(0, EFD_CLOEXEC)) {
        const auto folder = watched.File().parent_path();
        if (::inotify_add_watch(notices.Get(), folder.empty() ? "." : folder.c_str(),
                                IN_CLOSE_WRITE | IN_MOVED_TO) < 0)
            throw std::system_error(errno, std::generic_category());
        thread = std::thread([this] { Run(); });
    }
    ~State() {
        ::eventfd_write(stop.Get(), 1);
        thread.join();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

private:
    void Run() {
        pollfd wanted[] = {{notices.Get(), POLLIN, 0}, {stop.Get(), POLLIN, 0}};
        for (;;) {
            if (::poll(wanted, std::size(wanted), -1) < 0 && errno != EINTR) return;
            if (wanted[1].revents != 0) return;
            if (!IsChanged()) continue;
            const std::optional<LoadError> error = catalog.Reload();
            if (reloaded != nullptr) reloaded(error.has_value() ? &*error : nullptr);
        }
    }
    // Reads all notices that are there.
    bool IsChanged() const {
        alignas(inotify_event) char events[4096];
        bool changed = false;
        for (;;) {
            const ssize_t size = ::read(notices.Get(), events, sizeof events);
            if (size <= 0) return changed;
            for (const char* at = events; at < events + size;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(at);
                changed |=
                    (event->mask & IN_Q_OVERFLOW) != 0 || (event->len != 0 && name == event->name);
                at += sizeof *event + event->len;
            }
        }
    }

    ReloadingCatalog& catalog;
    std::function<void(const LoadError*)> reloaded;
    std::filesystem::path name;
    Descriptor notices;
    Descriptor stop;
    std::thread thread;
};

Watcher::Watcher(ReloadingCatalog& catalog, std::function<void(const LoadError*)> reloaded)
    : state(std::make_unique<State>(catalog, std::move(reloaded))) {}

Watcher::~Watcher() = default;

}  // namespace lexon
