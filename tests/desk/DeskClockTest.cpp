#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

#include "desk/DeskClock.h"
#include "desk/soundcard/Quiescence.h"
#include "utility/JobBell.h"

using tvk::desk::DeskClock;
using tvk::desk::VirtualTime;
using namespace std::chrono_literals;

namespace {

class DeskClockTest : public ::testing::Test {
protected:
    ~DeskClockTest() override { ::close(event_.fd); }

    DeskClockTest() {
        time_.setAwaitRest([this] { others_.await(); });
    }

    // Runs the poll while an audio thread moves time to the end.
    int pollWhileTimeMoves(std::chrono::milliseconds timeout, std::chrono::milliseconds end) {
        time_.hold();
        std::thread audio([&] {
            time_.markAudioThread();
            time_.waitUntil(end + 1ms);
        });
        EXPECT_TRUE(time_.run(0ms));
        int result = -1;
        std::thread control([&] {
            result = clock_.poll(&event_, 1, timeout);
            returnedAt_ = time_.now();
        });
        EXPECT_TRUE(time_.run(end));
        time_.release();
        audio.join();
        control.join();
        return result;
    }

    tvk::desk::Quiescence others_;
    VirtualTime time_;
    DeskClock clock_{time_};
    pollfd event_{eventfd(0, EFD_CLOEXEC), POLLIN, 0};
    std::chrono::nanoseconds returnedAt_{0};
};

}  // namespace

TEST_F(DeskClockTest, APollTimesOutInCardTime) {
    EXPECT_EQ(pollWhileTimeMoves(25ms, 60ms), 0);
    EXPECT_EQ(returnedAt_, 25ms);
}

TEST_F(DeskClockTest, APollOfAReadyDescriptorReturnsAtOnce) {
    eventfd_write(event_.fd, 1);
    EXPECT_EQ(pollWhileTimeMoves(25ms, 60ms), 1);
    EXPECT_EQ(returnedAt_, 0ms);
}

TEST_F(DeskClockTest, APollWithZeroTimeoutOnlyLooks) {
    EXPECT_EQ(pollWhileTimeMoves(0ms, 60ms), 0);
    EXPECT_EQ(returnedAt_, 0ms);
}

TEST_F(DeskClockTest, TheBellEndsAHelpersWait) {
    tvk::JobBell bell;
    bell.ring();
    clock_.awaitJob(bell, 24h);
    EXPECT_EQ(time_.now(), 0ms);
}

TEST_F(DeskClockTest, APollWithoutALimitWaitsForTheDataItself) {
    eventfd_write(event_.fd, 1);
    EXPECT_EQ(clock_.poll(&event_, 1, -1ms), 1);
    EXPECT_EQ(time_.now(), 0ms);
}
