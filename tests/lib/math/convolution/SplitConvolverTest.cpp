#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <vector>

#include "math/SplitConvolver.h"
#include "support/DirectConvolution.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/BackgroundJobs.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr float kRateHz = 44100.0f;
constexpr double kTolerance = 1e-5;
constexpr const char* kOverrun = "Warn Convolution background thread overruning";

// The scheme with its tail jobs run on this thread, at moments of the test's choice.
class Rig {
public:
    Rig(const std::vector<float>& ir, int block, int smallBlock, int headLength)
        : block_(block),
          smallBlock_(smallBlock),
          headLength_(headLength),
          conv_(block, smallBlock, headLength, "test") {
        load(ir);
    }

    void load(const std::vector<float>& ir) {
        const auto response = std::make_shared<const PreparedResponse>(ir.data(), static_cast<int>(ir.size()),
                                                                       smallBlock_, headLength_);
        conv_.exchange(std::make_unique<SplitConvolver::Stages>(response, block_, kRateHz));
    }

    // Plays in[from, to), whole blocks, into out. Jobs are run as they come unless the helper is stalled.
    void play(const std::vector<float>& in, std::vector<float>& out, int from, int to) {
        for (int n = from; n + block_ <= to; n += block_) {
            if (conv_.process(in.data() + n, out.data() + n) && !isStalled) conv_.runTail();
        }
    }
    std::vector<float> play(const std::vector<float>& in) {
        std::vector<float> out(in.size());
        play(in, out, 0, static_cast<int>(in.size()));
        return out;
    }

    SplitConvolver& convolver() { return conv_; }
    bool isStalled = false;

private:
    const int block_;
    const int smallBlock_;
    const int headLength_;
    SplitConvolver conv_;
};

class SplitConvolverBlock : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Blocks, SplitConvolverBlock, testing::Values(1, 7, 32, 33, 64, 128),
                         [](const auto& block) { return "Block" + std::to_string(block.param); });

// Lengths around every boundary of a head of 128 on a small block of 64, as the cabinet's.
TEST_P(SplitConvolverBlock, IsTheConvolutionWithoutDelayForEveryLength) {
    constexpr int kHead = 128;
    const int block = GetParam();
    for (const int length : {0, 1, kHead - 1, kHead, kHead + 1, 2 * kHead, 2 * kHead + 1, 1000, 4096}) {
        for (const auto& ir : {whiteNoise(length, 1), decayingNoise(length, 2)}) {
            Rig rig(ir, block, 64, kHead);
            const auto in = whiteNoise((length + 5 * kHead) / block * block, 3);
            const auto out = rig.play(in);
            EXPECT_LE(relativeError(out, in, ir, 0, static_cast<int>(in.size())), kTolerance) << length;
        }
    }
}

// The tank's sizes.
TEST_P(SplitConvolverBlock, IsTheConvolutionWithoutDelayForALongHead) {
    constexpr int kHead = 2048;
    const int block = GetParam();
    // A block of one sample costs the head a whole vector: it takes the lengths that have all three stages.
    const std::vector<int> lengths =
        block == 1 ? std::vector<int>{2 * kHead + 1, 3 * kHead + 100}
                   : std::vector<int>{kHead - 1, kHead, kHead + 1, 2 * kHead, 2 * kHead + 1, 3 * kHead + 100};
    for (const int length : lengths) {
        const auto ir = decayingNoise(length, 4);
        Rig rig(ir, block, 128, kHead);
        const auto in = whiteNoise(5 * kHead / block * block, 5);
        const auto out = rig.play(in);
        EXPECT_LE(relativeError(out, in, ir, 0, static_cast<int>(in.size()), 7), kTolerance) << length;
    }
}

TEST(SplitConvolver, AResponseUpToTheHeadHasNoMiddleAndUpToTwoHeadsNoTail) {
    for (const auto& [length, hasMiddle, hasTail] : {std::tuple{127, false, false},
                                                     {128, false, false},
                                                     {129, true, false},
                                                     {256, true, false},
                                                     {257, true, true}}) {
        const auto ir = whiteNoise(length, 6);
        const PreparedResponse response(ir.data(), length, 64, 128);
        EXPECT_EQ(response.middle != nullptr, hasMiddle) << length;
        EXPECT_EQ(response.tail != nullptr, hasTail) << length;
        EXPECT_EQ(Rig(ir, 32, 64, 128).convolver().hasTail(), hasTail) << length;
    }
}

TEST(SplitConvolver, OtherStagesStartFromSilence) {
    const auto first = whiteNoise(2000, 7);
    const auto second = decayingNoise(3000, 8);
    Rig rig(first, 32, 64, 128);
    rig.play(whiteNoise(32 * 131, 9));  // ends within a head and a small block
    rig.load(second);
    const auto in = whiteNoise(32 * 200, 10);
    const auto out = rig.play(in);
    EXPECT_LE(relativeError(out, in, second, 0, static_cast<int>(in.size())), kTolerance);
}

TEST(SplitConvolver, AStalledTailWarnsOnceAHeadAndRepeatsItsLastBlock) {
    constexpr int kHead = 128;
    const auto ir = decayingNoise(1500, 11);
    const auto in = whiteNoise(20 * kHead, 12);
    std::vector<float> out(in.size());
    Rig rig(ir, 32, 64, kHead);
    rig.play(in, out, 0, 10 * kHead - 32);

    // The job of the turn at 10 heads is the first that nobody runs, the turn at 11 the first that misses it.
    LogRecorder log;
    rig.isStalled = true;
    rig.play(in, out, 10 * kHead - 32, 11 * kHead - 32);
    EXPECT_EQ(log.count(kOverrun), 0);
    for (int turn = 11; turn < 16; ++turn) {
        rig.play(in, out, turn * kHead - 32, (turn + 1) * kHead - 32);
        EXPECT_EQ(log.count(kOverrun), turn - 10);
    }

    const std::vector<float> headAndMiddle(ir.begin(), ir.begin() + 2 * kHead);
    const std::vector<float> tail = [&] {
        std::vector<float> rest = ir;
        std::fill_n(rest.begin(), 2 * kHead, 0.0f);
        return rest;
    }();
    for (int n = 11 * kHead; n < 16 * kHead - 32; ++n) {
        const double stale = convolvedSample(in, tail, 10 * kHead + n % kHead);
        EXPECT_NEAR(out[n], convolvedSample(in, headAndMiddle, n) + stale, 1e-4) << n;
    }
}

TEST(SplitConvolver, AfterAStallWithinTheRingTheOutputIsExactFromTheFirstJobInTime) {
    const LogRecorder warnings;
    constexpr int kHead = 128;
    const auto ir = decayingNoise(1500, 13);
    const auto in = whiteNoise(60 * kHead, 14);
    for (int missed = 1; missed < TailExchange::kRingBlocks; ++missed) {
        std::vector<float> out(in.size());
        Rig rig(ir, 32, 64, kHead);
        rig.play(in, out, 0, 20 * kHead);
        rig.isStalled = true;
        rig.play(in, out, 20 * kHead, (20 + missed) * kHead);
        // The backlog is run just before the next turn, which takes its newest result.
        rig.play(in, out, (20 + missed) * kHead, (21 + missed) * kHead - 32);
        rig.isStalled = false;
        rig.convolver().runTail();
        rig.play(in, out, (21 + missed) * kHead - 32, 60 * kHead);
        EXPECT_LE(relativeError(out, in, ir, (21 + missed) * kHead, 60 * kHead), kTolerance) << missed;
        EXPECT_LE(relativeError(out, in, ir, 0, 21 * kHead), kTolerance) << missed;
    }
}

TEST(SplitConvolver, AfterAStallLongerThanTheRingTheOutputIsExactOneResponseLater) {
    const LogRecorder warnings;
    constexpr int kHead = 128;
    constexpr int kLength = 1500;
    const auto ir = decayingNoise(kLength, 15);
    const auto in = whiteNoise(80 * kHead, 16);
    std::vector<float> out(in.size());
    Rig rig(ir, 32, 64, kHead);
    rig.play(in, out, 0, 20 * kHead);
    rig.isStalled = true;
    rig.play(in, out, 20 * kHead, 45 * kHead);
    rig.isStalled = false;
    rig.convolver().runTail();
    rig.play(in, out, 45 * kHead, 80 * kHead);
    // The first block that the ring took again began within one head of the stall's end.
    EXPECT_LE(relativeError(out, in, ir, 46 * kHead + kLength, 80 * kHead), kTolerance);
    for (int n = 45 * kHead; n < 46 * kHead + kLength; ++n)
        EXPECT_LT(std::abs(out[n]), 100.0f) << n;
}

TEST(SplitConvolver, JobsArePendingFromTheHandOverUntilTheyAreDone) {
    const LogRecorder warnings;
    Rig rig(whiteNoise(1000, 17), 32, 64, 128);
    rig.isStalled = true;
    std::vector<float> out(4 * 128);
    const auto in = whiteNoise(4 * 128, 18);
    ASSERT_EQ(tvk::BackgroundJobs::pending(), 0);
    rig.play(in, out, 0, 128 - 32);
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 0);
    rig.play(in, out, 128 - 32, 128);
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 1);
    EXPECT_FALSE(rig.convolver().isTailIdle());
    rig.play(in, out, 128, 256);
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 2);
    rig.convolver().runTail();
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 0);
    EXPECT_TRUE(rig.convolver().isTailIdle());
}

TEST(SplitConvolver, AJobThatNobodyRunsIsNoLongerPendingAfterTheEnd) {
    const LogRecorder warnings;
    {
        Rig rig(whiteNoise(1000, 19), 32, 64, 128);
        rig.isStalled = true;
        rig.play(whiteNoise(512, 20));
        EXPECT_EQ(tvk::BackgroundJobs::pending(), 4);
    }
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 0);
}

TEST(SplitConvolver, SizesThatDoNotFitAreRefused) {
    EXPECT_THROW(SplitConvolver(0, 64, 128, "x"), std::invalid_argument);
    EXPECT_THROW(SplitConvolver(129, 64, 128, "x"), std::invalid_argument);
    EXPECT_THROW(SplitConvolver(32, 0, 128, "x"), std::invalid_argument);
    EXPECT_THROW(SplitConvolver(32, 48, 128, "x"), std::invalid_argument);
    const std::vector<float> ir(10);
    EXPECT_THROW(PreparedResponse(ir.data(), 10, 48, 128), std::invalid_argument);
    EXPECT_THROW(PreparedResponse(ir.data(), 10, 0, 128), std::invalid_argument);
}

TEST(SplitConvolver, ProcessAndTailDoNothingThatARealtimeThreadMustNot) {
    const LogRecorder log;
    Rig rig(whiteNoise(4096, 21), 32, 64, 128);
    const auto in = whiteNoise(40 * 128, 22);
    std::vector<float> out(in.size());
    const RealtimeGuard guard;
    {
        const tvk::RealtimeThreadScope audioThread;
        rig.play(in, out, 0, 20 * 128);
        rig.isStalled = true;  // warnings and lost input
        rig.play(in, out, 20 * 128, 39 * 128);
        rig.isStalled = false;
        rig.convolver().runTail();
        rig.play(in, out, 39 * 128, 40 * 128);
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
    EXPECT_EQ(tvk::log::drainRealtimeRing(), 18);
}

}  // namespace
