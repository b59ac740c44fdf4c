#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "utility/BackgroundJobs.h"
#include "utility/Clock.h"
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

// Runs a look of the test's own at every nap.
class LookClock : public tvk::Clock {
public:
    explicit LookClock(std::function<void()> look) : look_(std::move(look)) { install(this); }
    ~LookClock() override { install(nullptr); }

    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds{0}; }
    void sleepFor(std::chrono::nanoseconds) override {
        ADD_FAILURE() << "a helper is waited for in machine time";
    }
    void nap(std::chrono::nanoseconds) override { look_(); }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }

private:
    const std::function<void()> look_;
};

TEST(BackgroundJobs, WaitingNapsUntilTheLastJobIsDone) {
    int looks = 0;
    const LookClock clock([&] {
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
