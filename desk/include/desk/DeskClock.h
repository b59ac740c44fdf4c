// The program's clock door, opened to the virtual card's time.
#pragma once

#include "desk/soundcard/VirtualTime.h"
#include "utility/Clock.h"

namespace tvk::desk {

class DeskClock final : public Clock {
public:
    // Whether a new thread comes to its first wait before its starter goes on. It does not where threads run
    // free of each other: some are always at work then.
    enum class Starts { InOrder, AtOnce };

    // The time outlives the clock.
    explicit DeskClock(VirtualTime& time, Starts starts = Starts::InOrder) : time_(time), starts_(starts) {}

    std::chrono::nanoseconds now() override { return time_.now(); }
    void sleepFor(std::chrono::nanoseconds duration) override { time_.sleepFor(duration); }
    void sleepUntilWork(std::chrono::nanoseconds step, const std::function<bool()>& hasWork) override {
        time_.sleepUntilWork(step, hasWork);
    }

    void nap(std::chrono::nanoseconds duration) override;

    // Until the bell rings, and now and then for the thread's own sake.
    void awaitJob(JobBell& bell, std::chrono::nanoseconds duration) override;

    void threadStarted() override;

    // With a limit, looks at the descriptors every millisecond of the card's time; without, waits for the
    // data itself.
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) override;

private:
    VirtualTime& time_;
    const Starts starts_;
};

}  // namespace tvk::desk
