#include <atomic>
#include <barrier>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "desk/soundcard/Quiescence.h"
#include "desk/soundcard/VirtualTime.h"

using tvk::desk::Quiescence;
using tvk::desk::VirtualTime;
using namespace std::chrono_literals;

namespace {

using Nanoseconds = std::chrono::nanoseconds;

// A time that moves once everybody else is at rest, moved by a marked thread.
class VirtualTimeTest : public testing::Test {
protected:
    VirtualTimeTest() {
        time.setAwaitRest([this] { others.await(); });
    }

    // Moves time in periods of 1 ms on a thread of its own; others are at rest before each.
    std::thread audio(int periods, const std::function<void(int)>& period = {}) {
        return std::thread([this, periods, period] {
            time.markAudioThread();
            isMarked.store(true);
            isMarked.notify_all();
            for (int n = 1; n <= periods; ++n) {
                time.waitUntil(n * 1ms);
                if (period) period(n);
            }
        });
    }
    void awaitMark() { isMarked.wait(false); }

    Quiescence others;
    VirtualTime time;
    std::atomic<bool> isMarked{false};
};

// Waits for a question and works on it for longer than any period of the card.
class Worker {
public:
    explicit Worker(const VirtualTime& time)
        : thread_([this, &time] {
              std::unique_lock lock(mutex_);
              changed_.wait(lock, [this] { return isAsked_; });
              for (volatile int n = 0; n < 30000000;)
                  n = n + 1;
              answeredAt_ = time.now();
          }) {}

    void ask() {
        const std::lock_guard lock(mutex_);
        isAsked_ = true;
        changed_.notify_one();
    }
    // Ends it. It has been asked.
    Nanoseconds answeredAt() {
        thread_.join();
        return answeredAt_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isAsked_ = false;
    Nanoseconds answeredAt_{};
    std::thread thread_;  // the last: it uses all others
};

}  // namespace

TEST_F(VirtualTimeTest, MovesToTheDeadlineAtOnceWithoutSleepers) {
    time.waitUntil(3600s);
    EXPECT_EQ(time.now(), 3600s);
}

TEST_F(VirtualTimeTest, DoesNotGoBack) {
    time.waitUntil(2s);
    time.waitUntil(1s);
    EXPECT_EQ(time.now(), 2s);
}

TEST_F(VirtualTimeTest, SleepOfTheAudioThreadMovesTime) {
    std::thread audio([&] {
        time.markAudioThread();
        time.sleepFor(5ms);
    });
    audio.join();
    EXPECT_EQ(time.now(), 5ms);
}

TEST_F(VirtualTimeTest, ASleepWithoutAnAudioThreadIsTheMachines) {
    time.sleepFor(1ms);
    EXPECT_EQ(time.now(), 0ms);
}

TEST_F(VirtualTimeTest, ASleeperWakesAtItsDeadlineAndTimeStandsStillUntilItRests) {
    std::vector<Nanoseconds> seen;
    std::thread sleeper([&] {
        awaitMark();
        for (int n = 0; n < 3; ++n) {
            time.sleepFor(1500us);
            seen.push_back(time.now());
        }
    });
    std::vector<Nanoseconds> seenByAudio;
    audio(6, [&](int) { seenByAudio.push_back(time.now()); }).join();
    time.release();
    sleeper.join();
    EXPECT_EQ(seen, (std::vector<Nanoseconds>{1500us, 3ms, 4500us}));
    EXPECT_EQ(seenByAudio, (std::vector<Nanoseconds>{1ms, 2ms, 3ms, 4ms, 5ms, 6ms}));
}

// Unprotected on purpose: only the turns keep the threads apart.
TEST_F(VirtualTimeTest, OneDeadlineWakesInTheOrderOfTheThreadsNames) {
    std::vector<std::string> turns;
    std::vector<std::thread> sleepers;
    for (const char* const name : {"c", "a", "b"})
        sleepers.emplace_back([&, name] {
            pthread_setname_np(pthread_self(), name);
            awaitMark();
            for (int n = 0; n < 3; ++n) {
                time.sleepFor(1ms);
                turns.emplace_back(name);
            }
        });
    audio(4).join();
    time.release();
    for (std::thread& sleeper : sleepers)
        sleeper.join();
    EXPECT_EQ(turns, (std::vector<std::string>{"a", "b", "c", "a", "b", "c", "a", "b", "c"}));
}

TEST_F(VirtualTimeTest, SleepersAndTheAudioThreadTakeTheSameTurnsInEveryRun) {
    const auto run = [this] {
        time.reset();
        isMarked = false;
        std::vector<std::pair<int, Nanoseconds>> turns;
        const auto sleep = [&](int who, Nanoseconds step) {
            awaitMark();
            for (int n = 0; n < 50; ++n) {
                time.sleepFor(step);
                turns.emplace_back(who, time.now());
            }
        };
        std::thread first(sleep, 1, 700us);
        std::thread second(sleep, 2, 1100us);
        pthread_setname_np(first.native_handle(), "first");
        pthread_setname_np(second.native_handle(), "second");
        audio(80, [&](int) { turns.emplace_back(0, time.now()); }).join();
        first.join();
        second.join();
        return turns;
    };
    const auto once = run();
    EXPECT_EQ(once.size(), 180u);
    EXPECT_EQ(once, run());
}

TEST_F(VirtualTimeTest, AThreadThatWaitsForALockThatASleeperHoldsDoesNotHoldTimeUp) {
    std::mutex mutex;
    Nanoseconds gotItAt{};
    std::barrier isLocked(2);
    std::thread holder([&] {
        awaitMark();
        const std::lock_guard lock(mutex);
        isLocked.arrive_and_wait();
        time.sleepFor(3ms);
    });
    std::thread waiter([&] {
        isLocked.arrive_and_wait();
        const std::lock_guard lock(mutex);
        gotItAt = time.now();
    });
    audio(5).join();
    holder.join();
    waiter.join();
    EXPECT_EQ(gotItAt, 3ms);
}

TEST_F(VirtualTimeTest, WhatASleeperSetsOffIsOverBeforeTimeMovesOn) {
    Worker worker(time);
    std::thread asker([&] {
        awaitMark();
        time.sleepFor(2500us);
        worker.ask();
    });
    audio(5).join();
    asker.join();
    EXPECT_EQ(worker.answeredAt(), 2500us);
}

TEST_F(VirtualTimeTest, WhatATickSetsOffIsOverBeforeTimeMovesOn) {
    Worker worker(time);
    time.setTick([&] {
        if (time.now() != 3ms) return false;
        worker.ask();
        return true;
    });
    audio(1, [&](int) { time.waitUntil(10ms); }).join();
    EXPECT_EQ(worker.answeredAt(), 3ms);
}

TEST_F(VirtualTimeTest, ALookDuringWhichSomebodyAskedForTheTimeIsRepeated) {
    int looks = 0;
    time.setAwaitRest([&] {
        if (++looks == 1) std::thread([this] { time.now(); }).join();
    });
    time.waitUntil(1ms);
    EXPECT_EQ(looks, 2);
}

TEST_F(VirtualTimeTest, WhoSleepsUntilWorkIsAskedAtEachStepAndWokenOnceForIt) {
    std::vector<Nanoseconds> asked;
    Nanoseconds wokenAt{};
    std::thread sleeper([&] {
        awaitMark();
        time.sleepFor(500us);
        time.sleepUntilWork(2ms, [&] {
            asked.push_back(time.now());
            return time.now() >= 7ms;
        });
        wokenAt = time.now();
    });
    audio(1, [&](int) { time.waitUntil(20ms); }).join();
    sleeper.join();
    EXPECT_EQ(wokenAt, 8500us);
    // The last time by the sleeper itself.
    EXPECT_EQ(asked, (std::vector<Nanoseconds>{2500us, 4500us, 6500us, 8500us, 8500us}));
}

TEST_F(VirtualTimeTest, WhoSleepsUntilWorkCostsNoTurnWithoutIt) {
    int looks = 0;
    int looksWithoutWork = 0;
    std::atomic<bool> hasWork{false};
    time.setAwaitRest([&] {
        ++looks;
        others.await();
    });
    std::thread sleeper([&] {
        awaitMark();
        time.sleepUntilWork(1ms, [&] { return hasWork.load(); });
    });
    audio(1, [&](int) {
        looks = 0;
        time.waitUntil(99ms);
        looksWithoutWork = looks;
        hasWork = true;
        time.waitUntil(100ms);
    }).join();
    sleeper.join();
    EXPECT_EQ(looksWithoutWork, 1);  // after the audio thread's own turn
}

TEST_F(VirtualTimeTest, ReleaseEndsNoSleepUntilWorkIsThere) {
    std::atomic<bool> hasWork{false};
    std::atomic<bool> isAwake{false};
    std::thread sleeper([&] {
        awaitMark();
        time.sleepUntilWork(1ms, [&] { return hasWork.load(); });
        isAwake = true;
    });
    audio(5, [&](int n) {
        if (n == 5) time.release();
    }).join();
    EXPECT_FALSE(isAwake);
    hasWork = true;
    sleeper.join();
}

TEST_F(VirtualTimeTest, HeldTimeMovesByWhatItIsToldAndNoFurther) {
    time.hold();
    std::thread mover = audio(10);
    EXPECT_TRUE(time.run(0ms));
    EXPECT_EQ(time.now(), 0ms);
    EXPECT_TRUE(time.run(2500us));
    EXPECT_EQ(time.now(), 2500us);
    EXPECT_TRUE(time.run(1ms));
    EXPECT_EQ(time.now(), 3500us);
    time.release();
    mover.join();
    EXPECT_EQ(time.now(), 10ms);
}

TEST_F(VirtualTimeTest, ReleaseEndsEverySleep) {
    std::thread sleeper([&] {
        awaitMark();
        time.sleepFor(24h);
    });
    audio(3, [&](int period) {
        if (period == 2) time.release();
    }).join();
    sleeper.join();
    EXPECT_EQ(time.now(), 3ms);
}

TEST_F(VirtualTimeTest, TheEndOfTheAudioThreadLeavesSleepsToTheMachine) {
    std::thread sleeper([&] {
        awaitMark();
        time.sleepFor(50ms);
    });
    audio(1).join();
    sleeper.join();
    EXPECT_EQ(time.now(), 1ms);
}
