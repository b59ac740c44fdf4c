// A clock whose time is the sound card's: it moves when the audio thread waits for a period that is not there
// yet, and only while nobody else has work to do.
//
// The audio thread moves time (waitUntil, or sleepFor on the thread that is marked). Every other thread that
// sleeps through this clock is a sleeper with a deadline. On its way to its own deadline the audio thread
// does what is due in every millisecond, and wakes the sleepers one by one, in the order of their deadlines,
// those with one deadline in the order of their threads' names; after each, and before anything else, it
// waits until all other threads of the process are at rest. Who sleeps until there is work is asked about it
// and not woken in vain. So one thread works at a time, time stands still meanwhile, and a run repeats to the
// bit at any machine speed.
//
// While no audio thread is there, before its first period and after its end, sleeps are the machine's. A
// sleep that has not ended when the audio thread comes ends in the card's time, counted from where that
// stands.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <sys/types.h>

namespace tvk::desk {

class VirtualTime {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    // Time since the clock's start. Any thread.
    Nanoseconds now() const;

    // Marks the calling thread, until its end, as the one that moves time.
    void markAudioThread();

    // The marked thread's number, 0 without one. Any thread.
    pid_t audioThread() const { return audioThread_.load(std::memory_order_relaxed); }

    // How to wait until every other thread of the process is at rest; empty for no wait. Called on the audio
    // thread, and by runTo on its caller's. Set it before the audio thread is marked.
    void setAwaitRest(std::function<void()> awaitRest) { awaitRest_ = std::move(awaitRest); }

    // What is to be done in every millisecond of this time, on the audio thread, before the sleepers of that
    // moment wake; empty for nothing. Tells whether it may have given another thread work. Set it before the
    // audio thread is marked.
    static constexpr std::chrono::milliseconds kTick{1};
    void setTick(std::function<bool()> tick) { tick_ = std::move(tick); }

    // Moves time forward to `deadline`, waking sleepers on the way. Returns at once if that is past. One
    // thread.
    void waitUntil(Nanoseconds deadline);

    // Sleeps; on the marked thread, moves time. Any thread.
    void sleepFor(Nanoseconds duration);

    // Sleeps for `step`, and for another one until hasWork answers true at the end of one: the audio thread
    // asks, and the sleeper is woken for work alone. Any other thread.
    using Question = std::function<bool()>;
    void sleepUntilWork(Nanoseconds step, const Question& hasWork);

    // Time stands still from here on: the audio thread waits in its next waitUntil. Any thread.
    void hold();

    // Lets held time move on by `duration` and holds it again there; returns when it stands there and all
    // others are at rest, false when release came first. One caller at a time, not a sleeper.
    bool run(Nanoseconds duration);

    // The card's time has done its duty: sleeps end at once, those to come are the machine's, the card's time
    // goes with it, and nothing is held or waited for any more. Any thread.
    void release();

    // Back to the start. No thread may be waiting.
    void reset();

private:
    struct Sleeper {
        Nanoseconds deadline{0};
        Nanoseconds step{0};
        const Question* hasWork = nullptr;  // none for a plain sleep
        std::string threadName;
        bool isAwake = false;
        bool isAsked = false;  // hasWork, right now
        std::condition_variable wake;
    };
    class Mark;

    std::unique_lock<std::mutex> enter() const;
    bool isMachineTime() const { return isReleased_ || audioThread() == 0; }
    void rest(std::unique_lock<std::mutex>& lock);
    bool tick(std::unique_lock<std::mutex>& lock);
    void passInMachineTime(Nanoseconds deadline, std::unique_lock<std::mutex>& lock);
    void holdAtLimit(std::unique_lock<std::mutex>& lock);
    std::list<Sleeper*>::iterator firstSleeper();
    bool isForWork(Sleeper& sleeper, std::unique_lock<std::mutex>& lock);
    void wake(std::list<Sleeper*>::iterator sleeper, std::unique_lock<std::mutex>& lock);
    void sleep(Nanoseconds duration, const Question* hasWork);
    void endOfAudioThread();

    std::function<void()> awaitRest_;
    std::function<bool()> tick_;
    mutable std::mutex mutex_;
    mutable std::atomic<unsigned> arrivals_{0};  // threads that wanted the lock
    mutable unsigned admissions_ = 0;            // and those that got it
    mutable std::condition_variable hasEntered_;
    std::condition_variable changed_;  // hold, release, and who came to wait
    std::condition_variable fellAsleep_;
    std::condition_variable hasAsked_;
    Nanoseconds now_{0};
    Nanoseconds nextTick_{0};
    Nanoseconds limit_ = Nanoseconds::max();
    std::atomic<pid_t> audioThread_{0};
    bool isReleased_ = false;
    bool isHeld_ = false;  // the audio thread stands at the limit
    int waking_ = 0;       // sleepers told to wake that have not taken notice yet
    std::list<Sleeper*> sleepers_;
};

}  // namespace tvk::desk
