// Time for a conversation between threads that pace themselves by sleeping: it stands still while one of them
// works, and when all of them sleep it moves to the end of the sleep that ends first, at once.
//
// However the machine schedules them, none is ever late by this clock. Waits for descriptors do not wait.
#pragma once

#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include "utility/Clock.h"

class LockstepClock : public tvk::Clock {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    // threads: those that sleep by this clock. The clock in force comes back with the end of this one.
    explicit LockstepClock(std::size_t threads) : threads_(threads), before_(current()) { install(this); }
    ~LockstepClock() override { install(&before_); }
    LockstepClock(const LockstepClock&) = delete;
    LockstepClock& operator=(const LockstepClock&) = delete;

    Nanoseconds now() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }

    void sleepFor(Nanoseconds duration) override {
        std::unique_lock lock(mutex_);
        const Nanoseconds end = now_ + duration;
        ends_.insert(end);
        if (ends_.size() >= threads_) moveOn();
        changed_.wait(lock, [&] { return now_ >= end || isReleased_; });
    }

    void nap(Nanoseconds) override { std::this_thread::yield(); }
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds) override {
        return ::poll(descriptors, count, 0);
    }

    // From here on nobody waits, so that the threads can end.
    void release() {
        const std::lock_guard lock(mutex_);
        isReleased_ = true;
        changed_.notify_all();
    }

private:
    // Under the mutex.
    void moveOn() {
        now_ = *ends_.begin();
        ends_.erase(ends_.begin(), ends_.upper_bound(now_));
        changed_.notify_all();
    }

    const std::size_t threads_;
    tvk::Clock& before_;
    std::mutex mutex_;
    std::condition_variable changed_;
    Nanoseconds now_{std::chrono::hours(1)};
    std::multiset<Nanoseconds> ends_;  // of the sleeps under way
    bool isReleased_ = false;
};
