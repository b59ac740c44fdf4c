#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "utility/BackgroundJobs.h"
#include "utility/HelperStall.h"

namespace {

using tvk::BackgroundJobs;
using tvk::HelperStall;

TEST(BackgroundJobs, CountsWhatIsHandedOverAndNotDone) {
    ASSERT_EQ(BackgroundJobs::pending(), 0);
    BackgroundJobs::begin();
    BackgroundJobs::begin();
    BackgroundJobs::begin();
    EXPECT_EQ(BackgroundJobs::pending(), 3);
    BackgroundJobs::end(2);
    EXPECT_EQ(BackgroundJobs::pending(), 1);
    BackgroundJobs::end();
    EXPECT_EQ(BackgroundJobs::pending(), 0);
}

// The helper of a test: ends `jobs`, one after the other, and counts them.
std::thread helper(int jobs, std::atomic<int>& done) {
    return std::thread([jobs, &done] {
        for (int i = 0; i < jobs; ++i) {
            std::this_thread::yield();
            ++done;
            BackgroundJobs::end();
        }
    });
}

TEST(BackgroundJobs, WaitingEndsWithTheLastJob) {
    for (int round = 0; round < 100; ++round) {
        constexpr int kJobs = 3;
        std::atomic<int> done{0};
        for (int i = 0; i < kJobs; ++i)
            BackgroundJobs::begin();
        std::thread worker = helper(kJobs, done);
        BackgroundJobs::waitUntilIdle();
        EXPECT_EQ(done, kJobs);
        worker.join();
    }
    BackgroundJobs::waitUntilIdle();
}

constexpr std::chrono::hours kForEver{24};

TEST(BackgroundJobs, AHelperIsWokenByEachJob) {
    constexpr int kJobs = 1000;
    std::atomic<int> handedOver{0};
    int taken = 0;
    std::thread worker([&] {
        while (taken < kJobs) {
            BackgroundJobs::awaitHandOver(kForEver);
            for (; handedOver > taken; ++taken)
                BackgroundJobs::end();
        }
    });
    for (int i = 0; i < kJobs; ++i) {
        BackgroundJobs::begin();
        ++handedOver;
        BackgroundJobs::handedOver();
        BackgroundJobs::waitUntilIdle();
    }
    worker.join();
    EXPECT_EQ(taken, kJobs);
}

TEST(BackgroundJobs, AJobSinceTheLastCallIsNotWaitedFor) {
    BackgroundJobs::awaitHandOver(std::chrono::nanoseconds(1));
    BackgroundJobs::begin();
    BackgroundJobs::handedOver();
    BackgroundJobs::end();
    BackgroundJobs::awaitHandOver(kForEver);
}

TEST(BackgroundJobs, AHelperWithoutWorkWaitsNoLongerThanAsked) {
    BackgroundJobs::awaitHandOver(std::chrono::nanoseconds(1));
    BackgroundJobs::awaitHandOver(std::chrono::nanoseconds(1));
}

TEST(HelperStall, HoldsHelpersOfItsNameUntilItEnds) {
    std::atomic<bool> hasPassed{false};
    std::thread helper;
    {
        const HelperStall stall("held");
        HelperStall::pass("other");
        helper = std::thread([&] {
            HelperStall::pass("held");
            hasPassed = true;
        });
        HelperStall::waitUntilHeld();
        EXPECT_FALSE(hasPassed);
    }
    helper.join();
    EXPECT_TRUE(hasPassed);
    HelperStall::pass("held");
}

}  // namespace
