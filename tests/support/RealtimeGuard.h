// Counts what a real-time thread must not do: allocate, free, lock a mutex, write or sleep. It watches every
// thread that is inside a tvk::RealtimeThreadScope while the guard lives.
//
// Without sanitizers the guard stands in front of the C library's functions; under them it listens to the
// sanitizer's own allocation hooks, and realloc, locks and system calls are not seen. One guard at a time.
#pragma once

#include <ostream>

class RealtimeGuard {
public:
    struct Violations {
        long allocations = 0;
        long frees = 0;
        long locks = 0;
        long systemCalls = 0;  // write, writev, nanosleep, clock_nanosleep, usleep

        bool operator==(const Violations&) const = default;
    };

    // False where the guard sees allocations alone.
    static bool seesLocksAndSystemCalls();

    RealtimeGuard();
    ~RealtimeGuard();
    RealtimeGuard(const RealtimeGuard&) = delete;
    RealtimeGuard& operator=(const RealtimeGuard&) = delete;

    // Since the guard was made.
    Violations violations() const;
};

std::ostream& operator<<(std::ostream& out, const RealtimeGuard::Violations& violations);
