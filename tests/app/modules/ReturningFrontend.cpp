#include <cstdlib>

#include "app/frontend/AppMain.h"

// Returns the number in RESULT. The third argument is 0 for every front end.
extern "C" [[gnu::visibility("default")]] std::int32_t AppMain(std::intptr_t, std::int32_t,
                                                               std::int32_t unused) {
    return std::atoi(std::getenv("RESULT")) + unused;
}
