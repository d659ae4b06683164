#include <cstdint>

// The start-up library's behaviour when the cookie is wrong.
extern "C" [[gnu::visibility("default")]] std::int32_t Run(std::intptr_t, std::int32_t,
                                                           std::int32_t) {
    return 1;
}
