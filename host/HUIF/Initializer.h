#pragma once

#include <cstddef>

namespace HUIF {

// Holds the UI framework up while it lives. Both ends are host events.
//
// Threads:  the main thread, where the front end runs; LiveCount from any.
class Initializer {
public:
    Initializer();
    ~Initializer();
    Initializer(const Initializer&) = delete;
    Initializer& operator=(const Initializer&) = delete;

    static std::size_t LiveCount() noexcept;
};

}  // namespace HUIF
