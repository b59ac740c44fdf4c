#include <barrier>
#include <gtest/gtest.h>
#include <thread>
#include <utility>
#include <vector>

#include "desk/soundcard/VirtualTime.h"

using tvk::desk::VirtualTime;
using namespace std::chrono_literals;

TEST(VirtualTime, MovesToTheDeadlineAtOnceWithoutDrivers) {
    VirtualTime time;
    time.waitUntil(3600s);
    EXPECT_EQ(time.now(), 3600s);
}

TEST(VirtualTime, DoesNotGoBack) {
    VirtualTime time;
    time.waitUntil(2s);
    time.waitUntil(1s);
    EXPECT_EQ(time.now(), 2s);
}

TEST(VirtualTime, SleepOfTheAudioThreadMovesTime) {
    VirtualTime time;
    std::thread audio([&] {
        VirtualTime::markAudioThread();
        time.sleepFor(5ms);
    });
    audio.join();
    EXPECT_EQ(time.now(), 5ms);
}

TEST(VirtualTime, NapOfABystanderLeavesTimeAlone) {
    VirtualTime time;
    std::thread bystander([&] { time.sleepFor(1ms); });
    bystander.join();
    EXPECT_EQ(time.now(), 0ms);
}

TEST(VirtualTime, DriverWakesAtItsDeadlineAndHoldsTimeThereUntilItSleeps) {
    VirtualTime time;
    std::vector<std::chrono::nanoseconds> seenByDriver;
    std::vector<std::chrono::nanoseconds> seenByAudio;
    std::barrier driverIsThere(2);
    std::thread driver([&] {
        VirtualTime::Driver part(time);
        driverIsThere.arrive_and_wait();
        for (int i = 0; i < 3; ++i) {
            time.sleepFor(1500us);
            seenByDriver.push_back(time.now());
        }
    });
    driverIsThere.arrive_and_wait();
    for (int period = 1; period <= 6; ++period) {
        time.waitUntil(period * 1ms);
        seenByAudio.push_back(time.now());
    }
    driver.join();
    EXPECT_EQ(seenByDriver, (std::vector<std::chrono::nanoseconds>{1500us, 3ms, 4500us}));
    EXPECT_EQ(seenByAudio, (std::vector<std::chrono::nanoseconds>{1ms, 2ms, 3ms, 4ms, 5ms, 6ms}));
}

TEST(VirtualTime, TwoDriversAndTheAudioThreadTakeTheSameTurnsInEveryRun) {
    const auto run = [] {
        VirtualTime time;
        // Unprotected on purpose: only the turns keep the three threads apart.
        std::vector<std::pair<int, std::chrono::nanoseconds>> turns;
        std::barrier isThere(3);
        const auto drive = [&](int who, std::chrono::nanoseconds step) {
            VirtualTime::Driver part(time);
            isThere.arrive_and_wait();
            // The first sleeps end apart, whichever of the two falls asleep first.
            time.sleepFor(who * 10us);
            for (int i = 0; i < 50; ++i) {
                time.sleepFor(step);
                turns.emplace_back(who, time.now());
            }
        };
        std::thread first(drive, 1, 700us);
        std::thread second(drive, 2, 1100us);
        isThere.arrive_and_wait();
        for (int period = 1; period <= 80; ++period) {
            time.waitUntil(period * 1ms);
            turns.emplace_back(0, time.now());
        }
        first.join();
        second.join();
        return turns;
    };
    const auto once = run();
    EXPECT_EQ(once.size(), 180u);
    EXPECT_EQ(once, run());
}

TEST(VirtualTime, ReleasedDriverHoldsNothingUp) {
    VirtualTime time;
    VirtualTime::Driver part(time);
    std::thread audio([&] { time.waitUntil(1s); });
    part.release();
    audio.join();
    EXPECT_EQ(time.now(), 1s);
}

TEST(VirtualTime, DriverThatMovesTimeItselfDoesNotWaitForItself) {
    VirtualTime time;
    VirtualTime::Driver part(time);
    time.waitUntil(1s);
    EXPECT_EQ(time.now(), 1s);
}
