#include <atomic>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

#include "desk/DeskClock.h"

using tvk::desk::DeskClock;
using tvk::desk::VirtualTime;
using namespace std::chrono_literals;

namespace {

class DeskClockPoll : public ::testing::Test {
protected:
    ~DeskClockPoll() override { ::close(event_.fd); }

    // Runs the poll on a driver's thread while this one moves time up to the end.
    int pollWhileTimeMoves(std::chrono::milliseconds timeout, std::chrono::milliseconds end) {
        int result = -1;
        VirtualTime::Driver here(time_);
        std::thread driver([&] {
            VirtualTime::Driver part(time_);
            // The driver of the test's own thread holds time until this one is there.
            isThere_.store(true);
            isThere_.notify_one();
            result = clock_.poll(&event_, 1, timeout);
            returnedAt_ = time_.now();
        });
        isThere_.wait(false);
        here.release();
        time_.waitUntil(end);
        driver.join();
        return result;
    }

    VirtualTime time_;
    DeskClock clock_{time_};
    pollfd event_{eventfd(0, EFD_CLOEXEC), POLLIN, 0};
    std::atomic<bool> isThere_{false};
    std::chrono::nanoseconds returnedAt_{0};
};

}  // namespace

TEST_F(DeskClockPoll, TimesOutInCardTime) {
    EXPECT_EQ(pollWhileTimeMoves(25ms, 60ms), 0);
    EXPECT_EQ(returnedAt_, 25ms);
}

TEST_F(DeskClockPoll, ReadyDescriptorReturnsAtOnce) {
    eventfd_write(event_.fd, 1);
    EXPECT_EQ(pollWhileTimeMoves(25ms, 60ms), 1);
    EXPECT_EQ(returnedAt_, 0ms);
}

TEST_F(DeskClockPoll, ZeroTimeoutOnlyLooks) {
    EXPECT_EQ(pollWhileTimeMoves(0ms, 60ms), 0);
    EXPECT_EQ(returnedAt_, 0ms);
}

TEST_F(DeskClockPoll, ThreadThatIsNoDriverPollsTheMachine) {
    eventfd_write(event_.fd, 1);
    EXPECT_EQ(clock_.poll(&event_, 1, -1ms), 1);
    EXPECT_EQ(time_.now(), 0ms);
}
