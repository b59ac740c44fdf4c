// What every fuzzer needs: an assertion that libFuzzer reports, and a log that swallows its lines.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "utility/Log.h"

#define REQUIRE(condition)                                                       \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)

// Faults of the input are warned of thousands of times a second.
class QuietLog : public tvk::log::Sink {
public:
    QuietLog() { tvk::log::setSink(this); }
    void debugLine(const char*, const char*) override {}
    void diagnosticLine(tvk::log::Severity, const char*, int, const char*) override {}
};
