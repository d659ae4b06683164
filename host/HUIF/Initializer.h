#pragma once

#include <cstddef>

namespace HUIF {

// Keeps the UI framework up while it lives. Start and end are host events.
//
// Threads:  the main thread, where the front end runs; LiveCount from any thread.
class Initializer {
public:
    Initializer();
    ~Initializer();
    Initializer(const Initializer&) = delete;
    Initializer& operator=(const Initializer&) = delete;

    static std::size_t LiveCount() noexcept;
};

}  // namespace HUIF
