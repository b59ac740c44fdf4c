#include <atomic>
#include <gtest/gtest.h>
#include <semaphore>
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

constexpr int kMuchWork = 1000000;

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

TEST_F(DeskClockTest, ANewThreadComesToItsFirstWaitBeforeItsStarterGoesOn) {
    std::atomic<int> done{0};
    std::binary_semaphore end{0};
    std::thread started([&] {
        for (int n = 0; n < kMuchWork; ++n)
            done.store(n + 1, std::memory_order_relaxed);
        end.acquire();
    });
    clock_.threadStarted();
    EXPECT_EQ(done, kMuchWork);
    end.release();
    started.join();
}

TEST_F(DeskClockTest, AStarterDoesNotWaitForAThreadThatAwaitsItsRest) {
    std::thread awaiting([this] { others_.await(); });
    clock_.threadStarted();
    awaiting.join();
}

TEST_F(DeskClockTest, StartersDoNotWaitForEachOther) {
    std::thread another([this] { clock_.threadStarted(); });
    clock_.threadStarted();
    another.join();
}

TEST_F(DeskClockTest, AStarterGoesOnWhereThreadsRunFreeOfEachOther) {
    std::atomic<bool> hasGoneOn{false};
    std::thread atWork([&] {
        while (!hasGoneOn)
            std::this_thread::yield();
    });
    DeskClock(time_, DeskClock::Starts::AtOnce).threadStarted();
    hasGoneOn = true;
    atWork.join();
}
