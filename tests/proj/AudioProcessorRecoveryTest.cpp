#include <cerrno>
#include <chrono>

#include "AudioProcessorFixture.h"
#include "support/NotedClock.h"

namespace {

TEST_F(AudioProcessorTest, AFailedReadLosesThePeriodAndTheNextCycleRestartsWithSilence) {
    build();
    cycles(3);
    card.onCapture = [](long, long) { return -EPIPE; };
    const std::size_t before = card.calls.size();
    cycle();
    EXPECT_EQ(card.callsSince(before), (Lines{"read", "capture prepare"})) << "nothing is written";
    EXPECT_TRUE(processor->isStarted());
    EXPECT_EQ(processor->getXrunCount(), 1);

    card.onCapture = nullptr;
    const std::size_t restart = card.calls.size();
    cycle();
    EXPECT_EQ(card.callsSince(restart),
              (Lines{"capture stop", "playback stop", "capture prepare", "playback prepare", "write", "write",
                     "capture start", "playback start", "read", "write"}));
    cycles(3);
    EXPECT_EQ(processor->getXrunCount(), 1);
    EXPECT_EQ(tvk::log::drainRealtimeRing(), 1);
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0 capture: Broken pipe(-32)"));
}

TEST_F(AudioProcessorTest, AFailedReadBeforeTheFirstBlockLeavesTheEngineUnstarted) {
    build();
    card.onCapture = [](long, long) { return -EIO; };
    cycle();
    EXPECT_FALSE(processor->isStarted());
    card.onCapture = nullptr;
    cycle();
    EXPECT_TRUE(processor->isStarted());
}

TEST_F(AudioProcessorTest, AFailedWriteDoesNotSkipTheBlockAndTheNextCycleRestarts) {
    build();
    // Half the volume from the failed cycle on tells its block from those before.
    std::uint64_t failedFrom = UINT64_MAX;
    card.captured = [&failedFrom](std::uint64_t frame, unsigned) {
        const double level = frame < failedFrom ? 0.4 : 0.2;
        return word(frame % 2 == 0 ? level : -level);
    };
    load(kPassthruPreset);
    cycles(44100 / 32);
    ASSERT_NE(lastPeriodWritten()[0], 0);

    const long failing = card.playbackTransfers;
    card.onPlayback = [failing](long call, long frames) { return call == failing ? -EPIPE : frames; };
    failedFrom = card.capturedFrames;
    cycle();
    EXPECT_EQ(card.capturedFrames, failedFrom + 32);
    EXPECT_EQ(processor->getXrunCount(), 1);

    const std::size_t restart = card.calls.size();
    const std::size_t written = card.written.size();
    cycle();
    EXPECT_EQ(card.callsSince(restart),
              (Lines{"capture stop", "playback stop", "capture prepare", "playback prepare", "write", "write",
                     "capture start", "playback start", "read", "write"}));
    const std::vector<std::int32_t> silence(card.written.begin() + static_cast<std::ptrdiff_t>(written),
                                            card.written.end() - static_cast<std::ptrdiff_t>(kPeriodWords));
    EXPECT_EQ(silence, std::vector<std::int32_t>(2 * kPeriodWords, 0));
    EXPECT_NEAR(std::abs(sample(lastPeriodWritten()[0])), 0.2 * std::pow(10.0, -kDeltaDb / 20.0), 1e-3)
        << "the block of the failed cycle was computed and goes out now";
    EXPECT_EQ(processor->getXrunCount(), 1);
}

TEST_F(AudioProcessorTest, AStartThatFailsIsAWarning) {
    build();
    card.startResult = -ENODEV;
    cycle();
    tvk::log::drainRealtimeRing();
    EXPECT_TRUE(log.has("Warn Go error: No such device\n"));
}

TEST_F(AudioProcessorTest, ADeviceThatIsGoneIsTriedOncePerPeriod) {
    build();
    cycles(3);
    NotedClock noted;
    card.onCapture = [](long, long) { return -ENODEV; };
    cycle();
    EXPECT_TRUE(noted.sleeps.empty()) << "one failure restarts at once";
    cycles(4);
    ASSERT_EQ(noted.sleeps.size(), 4u);
    for (const std::chrono::nanoseconds sleep : noted.sleeps)
        EXPECT_EQ(sleep, std::chrono::nanoseconds(725624));  // 32 / 44100 s
    card.onCapture = nullptr;
    cycles(3);
    EXPECT_EQ(noted.sleeps.size(), 4u);
    EXPECT_EQ(processor->getXrunCount(), 5);
}

}  // namespace
