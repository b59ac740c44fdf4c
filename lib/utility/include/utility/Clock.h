// The one door for every wait of production code.
//
// Whoever sleeps, polls or asks the time goes through Clock::current(), so that a virtual clock can stand in
// its place: then a minute of waiting takes as long as the work that is done in it, and a run repeats.
#pragma once

#include <chrono>
#include <functional>
#include <poll.h>

namespace tvk {

class JobBell;

class Clock {
public:
    virtual ~Clock() = default;

    // Monotonic time since an arbitrary start.
    virtual std::chrono::nanoseconds now() = 0;

    // Blocks the calling thread; resumes after signals until the whole time has passed.
    virtual void sleepFor(std::chrono::nanoseconds duration) = 0;

    // For a thread that looks for work again and again: sleeps for `step`, and for another one until hasWork
    // answers true at the end of one. hasWork changes nothing, and may be asked on another thread while the
    // caller sleeps: a clock that makes its own time need not wake the thread for each look.
    virtual void sleepUntilWork(std::chrono::nanoseconds step, const std::function<bool()>& hasWork) {
        do
            sleepFor(step);
        while (!hasWork());
    }

    // The pause between two looks at what another thread does. In the machine's time, whatever this clock's
    // is: the other thread works in that.
    virtual void nap(std::chrono::nanoseconds duration);

    // A helper's nap before it looks for a job again. A clock that makes its own time may end it when the
    // bell rings, and let it last while it does not.
    virtual void awaitJob(JobBell&, std::chrono::nanoseconds duration) { nap(duration); }

    // Told by whoever has started a thread, right after: a clock that makes its own time lets the new thread
    // come to its first wait before its starter goes on, so that every run starts alike.
    virtual void threadStarted() {}

    // poll(2) with a timeout in this clock's time; a negative timeout waits for ever.
    virtual int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) = 0;

    // The clock in force: the machine's monotonic clock until another is installed.
    static Clock& current();

    // Installs a clock, null for the machine's own. Call it before any thread waits.
    static void install(Clock* clock);
};

}  // namespace tvk
