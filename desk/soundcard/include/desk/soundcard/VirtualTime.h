// A clock whose time is the sound card's: it moves when the audio thread waits for a period that is not there
// yet, and only while nobody else has work to do.
//
// Threads play one of three parts.
//   - The audio thread moves time: waitUntil, and sleepFor on a thread marked by markAudioThread.
//   - A driver is a control thread whose doings must fall on exact card times. While any driver is awake time
//     stands still; it moves on when all of them sleep, up to the earliest deadline. Then that one driver
//     wakes, and time stands again until it sleeps. Drivers with one deadline wake in the order in which they
//     fell asleep. So audio thread and drivers take turns, and a run repeats to the bit at any machine speed.
//   - All others (log, disk) do nothing that the sound depends on. Their sleeps are naps in the machine's
//   time.
//
// A driver must not wait for another thread other than through this clock: time would never move again. It
// ends its part (Driver::release) before it joins one.
#pragma once

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>

namespace tvk::desk {

class VirtualTime {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    // Makes the constructing thread a driver until release, or its end. Same thread for all three.
    class Driver {
    public:
        explicit Driver(VirtualTime& time);
        ~Driver() { release(); }
        Driver(const Driver&) = delete;
        Driver& operator=(const Driver&) = delete;
        void release();

    private:
        VirtualTime* time_;
    };

    // Time since the clock's start. Any thread.
    Nanoseconds now() const;

    // Marks the calling thread, for good, as the one whose sleeps move time.
    static void markAudioThread();

    // Moves time forward to `deadline`, waking drivers on the way. Returns at once if that is past. A driver
    // that calls this itself counts as asleep. Audio thread.
    void waitUntil(Nanoseconds deadline);

    // Sleeps according to the caller's part. Any thread.
    void sleepFor(Nanoseconds duration);

    // True on a driver's thread.
    bool callerIsDriver() const;

    // Back to time zero. No thread may be waiting.
    void reset();

private:
    struct Sleeper {
        Nanoseconds deadline;
        bool isAwake = false;
        std::condition_variable wake;
    };

    void sleepAsDriver(Nanoseconds duration);

    mutable std::mutex mutex_;
    std::condition_variable mayMove_;
    Nanoseconds now_{0};
    int awakeDrivers_ = 0;
    std::list<Sleeper*> sleepers_;  // in the order of falling asleep; few
};

}  // namespace tvk::desk
