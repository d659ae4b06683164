#include "app/frontend/AppMain.h"

// The third argument is 0 for every front end.
extern "C" [[gnu::visibility("default")]] std::int32_t AppMain(std::intptr_t, std::int32_t,
                                                               std::int32_t unused) {
    return 7 + unused;
}
