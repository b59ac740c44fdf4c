#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

#include "utility/BackgroundJobs.h"
#include "utility/JobBell.h"

namespace {

using tvk::BackgroundJobs;
using tvk::JobBell;

// A test that waits so long has failed.
constexpr std::chrono::hours kForEver{24};

TEST(JobBell, WakesItsHelperForEachJob) {
    constexpr int kJobs = 1000;
    JobBell bell;
    std::atomic<int> left{0};
    int taken = 0;
    std::thread worker([&] {
        while (taken < kJobs) {
            bell.await(kForEver);
            for (; left > taken; ++taken)
                BackgroundJobs::end();
        }
    });
    for (int i = 0; i < kJobs; ++i) {
        BackgroundJobs::begin();
        ++left;
        bell.ring();
        BackgroundJobs::waitUntilIdle();
    }
    worker.join();
    EXPECT_EQ(taken, kJobs);
}

TEST(JobBell, WhatRangBeforeTheWaitIsHeard) {
    JobBell bell;
    bell.ring();
    bell.await(kForEver);
    bell.ring();
    bell.ring();
    bell.await(kForEver);
}

TEST(JobBell, RingsForItsOwnHelperAlone) {
    JobBell own;
    JobBell other;
    std::atomic<bool> isHeard{false};
    std::thread worker([&] {
        own.await(kForEver);
        isHeard = true;
    });
    for (int i = 0; i < 1000; ++i)
        other.ring();
    EXPECT_FALSE(isHeard);
    own.ring();
    worker.join();
}

TEST(JobBell, ThatDoesNotRingIsAwaitedNoLongerThanAsked) {
    JobBell bell;
    bell.await(std::chrono::nanoseconds(1));
    bell.await(std::chrono::nanoseconds(1));
}

}  // namespace
