#include "host/vexacore/Threads.h"

namespace vexacore::threads {

void RecursiveMutex::Lock(const char*) { mutex.lock(); }

void RecursiveMutex::Unlock() { mutex.unlock(); }

}  // namespace vexacore::threads
