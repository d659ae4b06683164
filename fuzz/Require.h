#pragma once
#include <cstdio>
#include <cstdlib>

// What a fuzz target demands of every input: the process ends, and says what failed, where it does
// not hold. Not assert, which an optimised build would drop.
#define REQUIRE(condition)                                                                     \
    do {                                                                                       \
        if (!(condition)) {                                                                    \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                      \
        }                                                                                      \
    } while (false)
