#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

#include "math/ReverbConvolver.h"
#include "math/TwoStageFFTConvolver.h"
#include "support/DirectConvolution.h"
#include "support/LogRecorder.h"
#include "support/YieldingClock.h"
#include "utility/BackgroundJobs.h"
#include "utility/HelperStall.h"

namespace {

constexpr float kRateHz = 44100.0f;
constexpr double kTolerance = 1e-5;
constexpr int kCpu = 0;
constexpr const char* kOverrun = "Warn Convolution background thread overruning";

// Plays all of in, and before each block waits for the helper as the renderer does.
template <typename Convolver>
std::vector<float> playWaiting(Convolver& convolver, const std::vector<float>& in, int block) {
    std::vector<float> out(in.size());
    for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(block)) {
        tvk::BackgroundJobs::waitUntilIdle();
        convolver.process(in.data() + n, out.data() + n, block);
    }
    tvk::BackgroundJobs::waitUntilIdle();
    return out;
}

class ReverbConvolverTest : public testing::Test {
protected:
    LogRecorder log;
    YieldingClock clock;
};

TEST_F(ReverbConvolverTest, AMeasuredTankOfTwelveSecondsIsTheDirectConvolution) {
    constexpr int kLength = 551250;
    constexpr int kBlock = 32;
    const auto ir = decayingNoise(kLength, 1);
    const auto in = whiteNoise((kLength + 3 * 2048) / kBlock * kBlock, 2);
    ReverbConvolver tank(kBlock, ir.data(), kLength, 4096, 128, 2048, kCpu, "AudRvbBackThrd", kRateHz);
    ASSERT_TRUE(tank.hasHelper());
    const auto out = playWaiting(tank, in, kBlock);
    const int count = static_cast<int>(in.size());
    EXPECT_LE(relativeError(out, in, ir, 7, count, count / 500), kTolerance);
    EXPECT_FALSE(log.has(kOverrun));
}

TEST_F(ReverbConvolverTest, AHelperExistsForMoreThanTwoHeadsAlone) {
    for (const auto& [length, hasHelper] : {std::pair{100, false}, {256, false}, {512, false}, {513, true}}) {
        const auto ir = whiteNoise(length, 3);
        const auto in = whiteNoise(32 * 60, 4);
        ReverbConvolver reverb(32, ir.data(), length, 4096, 64, 256, kCpu, "test", kRateHz);
        EXPECT_EQ(reverb.hasHelper(), hasHelper) << length;
        EXPECT_LE(relativeError(playWaiting(reverb, in, 32), in, ir, 0, 32 * 60), kTolerance) << length;
    }
}

TEST_F(ReverbConvolverTest, ConvolversOfOnePreparedResponseAreEachTheConvolution) {
    const auto ir = decayingNoise(3000, 5);
    const auto response = std::make_shared<const PreparedResponse>(ir.data(), 3000, 128, 256);
    ReverbConvolver first(32, response, kCpu, "first", kRateHz);
    ReverbConvolver second(64, response, kCpu, "second", kRateHz);
    const auto inFirst = whiteNoise(64 * 100, 6);
    const auto inSecond = whiteNoise(64 * 100, 7);
    const auto outFirst = playWaiting(first, inFirst, 32);
    const auto outSecond = playWaiting(second, inSecond, 64);
    EXPECT_LE(relativeError(outFirst, inFirst, ir, 0, 6400), kTolerance);
    EXPECT_LE(relativeError(outSecond, inSecond, ir, 0, 6400), kTolerance);
    // Two convolvers and this test.
    EXPECT_EQ(response->tail.use_count(), 3);
}

TEST_F(ReverbConvolverTest, TheTwoStageFormTakesItsSizesInBlocks) {
    const auto ir = decayingNoise(5000, 8);
    for (const int block : {1, 32, 48}) {
        const auto in = whiteNoise(7000 / block * block, 9);
        TwoStageFFTConvolver reverb(block, ir.data(), 5000, 4096, 4, 16, kCpu, "test", kRateHz);
        EXPECT_TRUE(reverb.hasHelper());
        EXPECT_LE(relativeError(playWaiting(reverb, in, block), in, ir, 0, static_cast<int>(in.size())),
                  kTolerance)
            << block;
    }
    TwoStageFFTConvolver shorter(32, ir.data(), 2 * 16 * 32, 4096, 4, 16, kCpu, "test", kRateHz);
    EXPECT_FALSE(shorter.hasHelper());
}

TEST_F(ReverbConvolverTest, AStalledHelperIsNotWaitedForAndTheOutputRecovers) {
    constexpr int kHead = 256;
    const auto ir = decayingNoise(4000, 10);
    const auto in = whiteNoise(40 * kHead, 11);
    std::vector<float> out(in.size());
    ReverbConvolver reverb(32, ir.data(), 4000, 4096, 64, kHead, kCpu, "stalled", kRateHz);
    const auto play = [&](int from, int to, bool waits) {
        for (int n = from; n < to; n += 32) {
            if (waits) tvk::BackgroundJobs::waitUntilIdle();
            reverb.process(in.data() + n, out.data() + n, 32);
        }
    };
    play(0, 20 * kHead - 32, true);
    tvk::BackgroundJobs::waitUntilIdle();
    {
        const tvk::HelperStall stall("stalled");
        play(20 * kHead - 32, 23 * kHead, false);
        tvk::HelperStall::waitUntilHeld();
        EXPECT_EQ(log.count(kOverrun), 3);
        EXPECT_EQ(tvk::BackgroundJobs::pending(), 4);
    }
    play(23 * kHead, 40 * kHead, true);
    EXPECT_EQ(log.count(kOverrun), 3);
    EXPECT_LE(relativeError(out, in, ir, 0, 21 * kHead), kTolerance);
    EXPECT_GT(relativeError(out, in, ir, 21 * kHead, 24 * kHead), 0.01);
    EXPECT_LE(relativeError(out, in, ir, 24 * kHead, 40 * kHead), kTolerance);
}

// The live process does not wait: whatever the helper makes of it, no block is torn and the end is exact.
TEST_F(ReverbConvolverTest, AudioThatOutrunsTheHelperRecoversToExactness) {
    constexpr int kHead = 128;
    const auto ir = decayingNoise(20000, 12);
    const auto hurried = whiteNoise(200 * kHead, 13);
    ReverbConvolver reverb(32, ir.data(), 20000, 4096, 64, kHead, kCpu, "hurried", kRateHz);
    std::vector<float> in = hurried;
    const auto calm = whiteNoise(250 * kHead, 14);
    in.insert(in.end(), calm.begin(), calm.end());
    std::vector<float> out(in.size());
    for (int n = 0; n < 200 * kHead; n += 32)
        reverb.process(in.data() + n, out.data() + n, 32);
    for (int n = 200 * kHead; n < 450 * kHead; n += 32) {
        tvk::BackgroundJobs::waitUntilIdle();
        reverb.process(in.data() + n, out.data() + n, 32);
    }
    EXPECT_LE(relativeError(out, in, ir, 202 * kHead + 20000, 450 * kHead, 5), kTolerance);
}

}  // namespace
