// A clock in whose waits audio goes on: a wait of d seconds runs the blocks that fall into d, and takes no
// time. It stands in for the audio thread where a test needs every block at a known moment.
#pragma once

#include <functional>
#include <utility>

#include "utility/Clock.h"

class AudioWhileWaiting : public tvk::Clock {
public:
    // Installs itself until it goes; block is run once every blockSeconds of waiting.
    AudioWhileWaiting(double blockSeconds, std::function<void()> block)
        : blockSeconds_(blockSeconds), block_(std::move(block)) {
        tvk::Clock::install(this);
    }
    ~AudioWhileWaiting() override { tvk::Clock::install(nullptr); }

    std::chrono::nanoseconds now() override { return now_; }
    void sleepFor(std::chrono::nanoseconds duration) override {
        now_ += duration;
        pending_ += std::chrono::duration<double>(duration).count();
        for (; pending_ >= blockSeconds_; pending_ -= blockSeconds_)
            block_();
    }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds timeout) override {
        sleepFor(timeout);
        return 0;
    }

private:
    const double blockSeconds_;
    const std::function<void()> block_;
    std::chrono::nanoseconds now_{0};
    double pending_ = 0.0;
};
