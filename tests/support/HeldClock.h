// A clock in the test's hand: time moves when the thread that made the clock waits or advances it, and
// everybody else's wait ends when that much time has come. After release they wait no longer than it takes to
// keep threads that still loop out of each other's way.
#pragma once

#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include "utility/Clock.h"

class HeldClock : public tvk::Clock {
public:
    HeldClock() { install(this); }
    ~HeldClock() override { install(nullptr); }
    HeldClock(const HeldClock&) = delete;
    HeldClock& operator=(const HeldClock&) = delete;

    std::chrono::nanoseconds now() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }
    void sleepFor(std::chrono::nanoseconds duration) override {
        if (std::this_thread::get_id() == owner_)
            advance(duration);
        else
            waitUntil(now() + duration);
    }
    // Without end it waits in the machine's time.
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) override {
        if (timeout.count() < 0) return ::poll(descriptors, count, -1);
        if (const int ready = ::poll(descriptors, count, 0)) return ready;
        sleepFor(timeout);
        return ::poll(descriptors, count, 0);
    }

    void waitUntil(std::chrono::nanoseconds time) {
        std::unique_lock lock(mutex_);
        const auto mine = wakeUps_.insert(time);
        changed_.notify_all();
        changed_.wait(lock, [&] { return now_ >= time || isReleased_; });
        wakeUps_.erase(mine);
        if (now_ >= time) return;
        lock.unlock();
        nap(kReleasedWait);
    }

    // The same for the one thread that has to have seen all the time there is before more of it comes: a
    // sound card's.
    void keepPaceUntil(std::chrono::nanoseconds time) {
        {
            const std::lock_guard lock(mutex_);
            paceWakeUp_ = time;
            changed_.notify_all();
        }
        waitUntil(time);
    }

    // There is going to be such a thread, and time stands until it waits.
    void awaitPace() { paceWakeUp_ = std::chrono::nanoseconds(0); }

    void advance(std::chrono::nanoseconds duration) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return paceWakeUp_ > now_ || isReleased_; });
        now_ += duration;
        changed_.notify_all();
    }

    // Goes from one wake-up to the next, and on when that many threads wait again: each of them sees every
    // wait of its own end in time.
    void advanceInStep(std::size_t sleepers, std::chrono::nanoseconds duration) {
        std::unique_lock lock(mutex_);
        const std::chrono::nanoseconds end = now_ + duration;
        while (true) {
            changed_.wait(lock, [&] { return wakeUps_.size() == sleepers && *wakeUps_.begin() > now_; });
            if (*wakeUps_.begin() > end) break;
            now_ = *wakeUps_.begin();
            changed_.notify_all();
        }
        now_ = end;
    }

    // A step at a time until it holds; the others' work in between takes the machine's time.
    template <typename Condition>
    void advanceUntil(Condition holds, std::chrono::milliseconds step = std::chrono::milliseconds(1)) {
        while (!holds()) {
            advance(step);
            std::this_thread::yield();
        }
    }

    void release() {
        const std::lock_guard lock(mutex_);
        isReleased_ = true;
        changed_.notify_all();
    }

private:
    static constexpr std::chrono::milliseconds kReleasedWait{1};

    const std::thread::id owner_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable changed_;
    std::chrono::nanoseconds now_{0};
    std::chrono::nanoseconds paceWakeUp_ = std::chrono::nanoseconds::max();
    std::multiset<std::chrono::nanoseconds> wakeUps_;
    bool isReleased_ = false;
};
