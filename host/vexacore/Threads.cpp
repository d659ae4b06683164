#include "host/vexacore/Threads.h"

#include <string>

#include "host/vexacore/Debug.h"

namespace vexacore::threads {

void RecursiveMutex::Lock(const char* label) {
    if (label) {
        if (mutex.try_lock()) return;
        debug::HostEvents::Append(std::string("waits for ") + label);
    }
    mutex.lock();
}

void RecursiveMutex::Unlock() { mutex.unlock(); }

}  // namespace vexacore::threads
