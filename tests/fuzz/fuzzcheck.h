#pragma once

#include <cstdio>
#include <cstdlib>

// A property a fuzz target checks on every input. A broken one aborts, which libFuzzer reports
// as a crash and saves the input, and which fails the replay test.
#define FB_FUZZ_CHECK(condition) \
    do { \
        if (!(condition)) { \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort(); \
        } \
    } while (false)
