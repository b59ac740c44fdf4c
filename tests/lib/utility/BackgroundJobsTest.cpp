#include <atomic>
#include <gtest/gtest.h>
#include <thread>

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
