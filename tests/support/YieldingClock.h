// A clock whose sleeps give the processor away and return: threads that look for work every millisecond look
// all the time, and a test takes as long as its work. Helpers of the audio path wait for their bell: a
// real-time thread that yields keeps its processor.
#pragma once

#include <thread>

#include "utility/Clock.h"
#include "utility/JobBell.h"

class YieldingClock : public tvk::Clock {
public:
    YieldingClock() { tvk::Clock::install(this); }
    ~YieldingClock() override { tvk::Clock::install(nullptr); }
    YieldingClock(const YieldingClock&) = delete;
    YieldingClock& operator=(const YieldingClock&) = delete;

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds{0}; }
    void sleepFor(std::chrono::nanoseconds) override { std::this_thread::yield(); }
    void nap(std::chrono::nanoseconds) override { std::this_thread::yield(); }
    void awaitJob(tvk::JobBell& bell, std::chrono::nanoseconds) override {
        bell.await(std::chrono::seconds(1));
    }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }
};
