// The clock of a model on the test's sound card.
#pragma once

#include <atomic>
#include <chrono>

#include "support/card/TestCard.h"
#include "utility/Clock.h"

// Time that stands until somebody waits: a wait of d lets the card run the periods that fall into d, and
// returns when the audio thread has asked for the next. With it the audio thread runs in step with the test.
class SteppedTime : public tvk::Clock {
public:
    explicit SteppedTime(TestCard& card) {
        install(this);
        card.beforePeriod = [this] { awaitPeriod(); };
    }
    ~SteppedTime() override { install(nullptr); }

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(now_.load()); }
    void sleepFor(std::chrono::nanoseconds duration) override {
        const long long end = now_.fetch_add(duration.count()) + duration.count();
        grant(static_cast<long>(end / kPeriodNs));
        for (long taken = taken_.load(); taken < end / kPeriodNs && !free_.load(); taken = taken_.load())
            taken_.wait(taken);
    }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }

    // From here on the card never waits, so that the audio thread can end.
    void release() {
        free_.store(true);
        granted_.fetch_add(1);
        granted_.notify_all();
    }

private:
    static constexpr long long kPeriodNs = 725624;

    // Never less than another thread has granted.
    void grant(long periods) {
        long granted = granted_.load();
        while (granted < periods && !granted_.compare_exchange_weak(granted, periods)) {
        }
        granted_.notify_all();
    }

    void awaitPeriod() {
        const long wanted = taken_.load() + 1;
        for (long granted = granted_.load(); granted < wanted && !free_.load(); granted = granted_.load())
            granted_.wait(granted);
        taken_.store(wanted);
        taken_.notify_all();
    }

    std::atomic<long long> now_{0};
    std::atomic<long> granted_{0};
    std::atomic<long> taken_{0};
    std::atomic<bool> free_{false};
};
