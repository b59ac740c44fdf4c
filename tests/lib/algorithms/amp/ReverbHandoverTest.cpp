#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "algorithms/amp/ReverbHandover.h"
#include "support/LogRecorder.h"
#include "utility/BackgroundJobs.h"

namespace {

constexpr int kBlock = 32;
const std::string kNotReady = "Warn Reverb buffer not ready";

using Block = std::vector<float>;

Block blockOf(float value) {
    return Block(kBlock, value);
}

Block exchange(ReverbHandover& handover, float sent) {
    Block returned(kBlock, -1.0f);
    handover.exchange(blockOf(sent).data(), returned.data());
    return returned;
}

// What the tank's thread does, with a wire for a tank.
bool echo(ReverbHandover& handover) {
    if (!handover.takeRequest()) return false;
    std::copy_n(handover.send(), kBlock, handover.returned());
    handover.finish();
    return true;
}

TEST(ReverbHandover, TheFirstBlockFindsASilentReturnAndDoesNotWait) {
    const LogRecorder log;
    ReverbHandover handover(kBlock);
    EXPECT_EQ(exchange(handover, 1.0f), blockOf(0.0f));
    EXPECT_EQ(log.count(kNotReady), 0);
}

TEST(ReverbHandover, EveryBlockComesBackOneBlockLaterAndNoneIsLost) {
    ReverbHandover handover(kBlock);
    std::atomic<bool> isRunning{true};
    std::thread tank([&] {
        while (isRunning.load())
            if (!echo(handover)) std::this_thread::yield();
    });
    for (int block = 1; block <= 2000; ++block)
        ASSERT_EQ(exchange(handover, static_cast<float>(block)), blockOf(static_cast<float>(block - 1)));
    isRunning.store(false);
    tank.join();
}

TEST(ReverbHandover, AnUnfinishedBlockHoldsTheCallerWhichWarnsUntilItIsDone) {
    const LogRecorder log;
    ReverbHandover handover(kBlock);
    exchange(handover, 1.0f);
    std::atomic<bool> hasReturned{false};
    Block second;
    std::thread audio([&] {
        second = exchange(handover, 2.0f);
        hasReturned.store(true);
    });
    while (log.count(kNotReady) < 3)
        std::this_thread::yield();
    ASSERT_TRUE(handover.takeRequest());
    // Taken is not done.
    const long before = log.count(kNotReady);
    while (log.count(kNotReady) < before + 3)
        std::this_thread::yield();
    EXPECT_FALSE(hasReturned.load());
    std::copy_n(handover.send(), kBlock, handover.returned());
    handover.finish();
    audio.join();
    EXPECT_EQ(second, blockOf(1.0f));
    ASSERT_TRUE(echo(handover));
}

TEST(ReverbHandover, ARequestIsTakenOnce) {
    ReverbHandover handover(kBlock);
    EXPECT_FALSE(handover.takeRequest());
    exchange(handover, 1.0f);
    EXPECT_TRUE(handover.takeRequest());
    EXPECT_FALSE(handover.takeRequest());
    handover.finish();
    EXPECT_FALSE(handover.takeRequest());
}

TEST(ReverbHandover, ABlockIsAPendingJobUntilItIsDone) {
    const int before = tvk::BackgroundJobs::pending();
    {
        ReverbHandover handover(kBlock);
        exchange(handover, 1.0f);
        EXPECT_EQ(tvk::BackgroundJobs::pending(), before + 1);
        echo(handover);
        EXPECT_EQ(tvk::BackgroundJobs::pending(), before);
        exchange(handover, 2.0f);
    }
    // Nobody will run the block of a hand-over that is gone.
    EXPECT_EQ(tvk::BackgroundJobs::pending(), before);
}

}  // namespace
