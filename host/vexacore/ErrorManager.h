#pragma once

#include <atomic>
#include <cstddef>
#include <new>

namespace vexacore::config {

// The application's last help when memory is exhausted: a reserve that is returned to the system
// once, so that the application can still save and report what happened.
//
// Owns:     the reserve. The host borrows the installed manager: whoever installs one uninstalls it
//           before deleting it.
// Failure:  the constructor throws std::bad_alloc.
// Threads:  install and uninstall on the launcher's thread; any thread may ask for the reserve.
class ErrorManager {
public:
    static constexpr std::size_t kReserveBytes = std::size_t{64} * 1024;

    ErrorManager();
    virtual ~ErrorManager();
    ErrorManager(const ErrorManager&) = delete;
    ErrorManager& operator=(const ErrorManager&) = delete;

    // Frees the reserve; false when it is already gone.
    virtual bool ReleaseReserve() noexcept;

    static void Set(ErrorManager* manager) noexcept;  // null uninstalls
    static ErrorManager* Get() noexcept;              // null when none is installed

    // While one lives, an operator new that finds no memory asks the installed manager for its
    // reserve and tries again. Without a manager or a reserve it throws std::bad_alloc.
    //
    // Owns:   the place of std::new_handler; the destructor restores the handler from before.
    class NewHandlerInitializer {
    public:
        NewHandlerInitializer() noexcept;
        ~NewHandlerInitializer();
        NewHandlerInitializer(const NewHandlerInitializer&) = delete;
        NewHandlerInitializer& operator=(const NewHandlerInitializer&) = delete;

    private:
        std::new_handler previous;
    };

private:
    std::atomic<std::byte*> reserve;
};

}  // namespace vexacore::config
