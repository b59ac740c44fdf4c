// A clock whose time passes at once, and is written down.
#pragma once

#include <vector>

#include "utility/Clock.h"

class NotedClock : public tvk::Clock {
public:
    NotedClock() { install(this); }
    ~NotedClock() override { install(nullptr); }
    NotedClock(const NotedClock&) = delete;
    NotedClock& operator=(const NotedClock&) = delete;

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(0); }
    void sleepFor(std::chrono::nanoseconds duration) override { sleeps.push_back(duration); }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }

    std::vector<std::chrono::nanoseconds> sleeps;
};
