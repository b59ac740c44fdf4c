// A clock that stands until somebody waits: a wait takes its time, and no longer. Any thread.
#pragma once

#include <atomic>

#include "utility/Clock.h"

class SteppedClock : public tvk::Clock {
public:
    SteppedClock() { install(this); }
    ~SteppedClock() override { install(nullptr); }
    SteppedClock(const SteppedClock&) = delete;
    SteppedClock& operator=(const SteppedClock&) = delete;

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(now_.load()); }
    void sleepFor(std::chrono::nanoseconds duration) override { now_ += duration.count(); }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds timeout) override {
        if (timeout.count() > 0) sleepFor(timeout);
        return 0;
    }

private:
    std::atomic<long long> now_{0};
};
