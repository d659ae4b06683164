#include <cstdint>

// What the start-up library does when the cookie is not the one it expects.
extern "C" [[gnu::visibility("default")]] std::int32_t Run(std::intptr_t, std::int32_t,
                                                           std::int32_t) {
    return 1;
}
