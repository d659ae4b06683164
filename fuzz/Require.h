#pragma once
#include <cstdio>
#include <cstdlib>

// A condition that must hold for every input. When it does not, the process reports it and ends. An
// optimised build would drop an assert.
#define REQUIRE(condition)                                                                     \
    do {                                                                                       \
        if (!(condition)) {                                                                    \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                      \
        }                                                                                      \
    } while (false)
