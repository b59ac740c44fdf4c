// A clock that stands still until the test, or somebody's sleep, moves it on. Waits for descriptors are the
// machine's, and do not wait.
#pragma once

#include <atomic>

#include "utility/Clock.h"

class HandClock : public tvk::Clock {
public:
    HandClock() { install(this); }
    ~HandClock() override { install(nullptr); }
    HandClock(const HandClock&) = delete;
    HandClock& operator=(const HandClock&) = delete;

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(now_.load()); }
    void sleepFor(std::chrono::nanoseconds duration) override { now_ += duration.count(); }
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds) override {
        return ::poll(descriptors, count, 0);
    }

    void advance(std::chrono::nanoseconds duration) { sleepFor(duration); }

private:
    std::atomic<std::chrono::nanoseconds::rep> now_{0};
};
