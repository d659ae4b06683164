#pragma once

#include <mutex>

namespace vexacore::threads {

// A mutex that its holder may lock again. It is free after as many unlocks as locks.
class RecursiveMutex {
public:
    void Lock(const char* label);  // `label` is unused
    void Unlock();

private:
    std::recursive_mutex mutex;
};

}  // namespace vexacore::threads
