// Time for a test of threads that pace themselves by sleeping: it stands still until all of them sleep, and
// then moves to the end of the sleep that ends first, as far as the test says.
//
// A run is the same in every repeat if no two of the threads work on the same thing at the same moment. Waits
// for descriptors are the machine's, and do not wait.
#pragma once

#include <condition_variable>
#include <mutex>
#include <set>

#include "utility/Clock.h"

class PacedClock : public tvk::Clock {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    // threads: those that sleep by this clock, the test's own not among them.
    explicit PacedClock(int threads) : threads_(static_cast<std::size_t>(threads)) { install(this); }
    ~PacedClock() override { install(nullptr); }
    PacedClock(const PacedClock&) = delete;
    PacedClock& operator=(const PacedClock&) = delete;

    Nanoseconds now() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }

    void sleepFor(Nanoseconds duration) override {
        std::unique_lock lock(mutex_);
        const Nanoseconds end = now_ + duration;
        if (isReleased_) now_ = end;
        if (now_ >= end) return;
        ends_.insert(end);
        changed_.notify_all();
        changed_.wait(lock, [&] { return now_ >= end || isReleased_; });
    }

    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds) override {
        return ::poll(descriptors, count, 0);
    }

    // Lets that much time pass; returns when all threads sleep again.
    void advance(Nanoseconds duration) {
        std::unique_lock lock(mutex_);
        const Nanoseconds end = now_ + duration;
        for (;;) {
            changed_.wait(lock, [this] { return ends_.size() >= threads_; });
            if (ends_.empty() || *ends_.begin() > end) break;
            now_ = *ends_.begin();
            while (!ends_.empty() && *ends_.begin() <= now_)
                ends_.erase(ends_.begin());
            changed_.notify_all();
        }
        now_ = end;
    }

    // Another thread that sleeps by this clock is about to start, or is about to end.
    void enter() { changeThreads(1); }
    void leave() { changeThreads(-1); }

    // From here on nobody waits, so that the threads can end.
    void release() {
        const std::lock_guard lock(mutex_);
        isReleased_ = true;
        changed_.notify_all();
    }

private:
    void changeThreads(int change) {
        const std::lock_guard lock(mutex_);
        threads_ += static_cast<std::size_t>(change);
        changed_.notify_all();
    }

    std::size_t threads_;
    std::mutex mutex_;
    std::condition_variable changed_;
    Nanoseconds now_{std::chrono::hours(1)};
    std::multiset<Nanoseconds> ends_;  // of the sleeps under way
    bool isReleased_ = false;
};
