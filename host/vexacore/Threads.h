#pragma once

#include <mutex>

namespace vexacore::threads {

// A mutex that its holder may lock again; it is free after as many unlocks as locks.
class RecursiveMutex {
public:
    // `label` names the lock for debugging: a wait for a mutex that was not free is noted as a host
    // event under that name. Null notes nothing.
    void Lock(const char* label);
    void Unlock();

private:
    std::recursive_mutex mutex;
};

}  // namespace vexacore::threads
