#pragma once

namespace HUIF {

// Keeps the UI framework up while it lives. Start and end are host events.
//
// Threads:  the main thread, where the front end runs.
class Initializer {
public:
    Initializer();
    ~Initializer();
    Initializer(const Initializer&) = delete;
    Initializer& operator=(const Initializer&) = delete;
};

}  // namespace HUIF
