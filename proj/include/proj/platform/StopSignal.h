// SIGUSR1, the order to stop: blocked in every thread, and taken by the main thread in its wait alone.
//
// Construct it on the main thread before any other thread starts, so that all of them inherit the block; a
// program that has threads before that calls block() first.
// A signal that comes before the wait stays pending and ends the wait at once: it cannot be lost, as it can
// between a test and pause(2).
#pragma once

#include <csignal>

namespace tvk {

class StopSignal {
public:
    // Blocks SIGUSR1 in this thread and installs its handler.
    StopSignal();

    // Puts handler and mask back; a signal that is still pending is discarded.
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    // Blocks SIGUSR1 in the calling thread and in those that it starts: it stays pending.
    static void block();

    // Sleeps until the signal arrives, or returns at once when it has. Main thread.
    void wait();

    // True from the arrival on; never blocks. Main thread.
    bool arrived() const;

private:
    sigset_t maskBefore_;
    struct sigaction actionBefore_;
};

}  // namespace tvk
