#include <atomic>
#include <gtest/gtest.h>
#include <thread>

#include "support/AudioWhileWaiting.h"
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

TEST(BackgroundJobs, WaitingSleepsOnTheClockUntilTheLastJobIsDone) {
    int looks = 0;
    AudioWhileWaiting clock(1e-4, [&] {
        if (++looks >= 5) BackgroundJobs::end();
    });
    for (int i = 0; i < 3; ++i)
        BackgroundJobs::begin();
    BackgroundJobs::waitUntilIdle();
    EXPECT_EQ(looks, 7);
    BackgroundJobs::waitUntilIdle();
    EXPECT_EQ(looks, 7) << "nothing was pending";
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
