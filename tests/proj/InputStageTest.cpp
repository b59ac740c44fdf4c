#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "proj/models/audio/InputStage.h"
#include "proj/models/audio/OutputFade.h"

namespace {

constexpr double kRate = 44100.0;
constexpr double kTwoPi = 2.0 * std::numbers::pi;

TEST(DcTracker, TakesConstantFullScaleAwayWithinAFractionOfASecond) {
    DcTracker tracker(kRate);
    float y = 1.0f;
    for (int i = 0; i < 22050; ++i)
        y = tracker.process(1.0f);
    EXPECT_NEAR(y, 0.0, 1e-4);
}

TEST(DcTracker, StepFallsWithTheTimeConstantOfFiveHertz) {
    DcTracker tracker(kRate);
    for (int n = 1; n <= 4410; ++n)
        EXPECT_NEAR(tracker.process(1.0f), std::exp(-kTwoPi * 5.0 * n / kRate), 1e-4);
}

// y = x - state of  state += (x - state) c  is H(z) = (1 - c)(1 - z^-1) / (1 - (1 - c) z^-1).
TEST(DcTracker, IsAHighPassWithItsCornerAtFiveHertz) {
    const double c = 1.0 - std::exp(-kTwoPi * 5.0 / kRate);
    for (const double frequency : {1.0, 5.0, 50.0, 1000.0}) {
        const std::complex<double> delay = std::polar(1.0, -kTwoPi * frequency / kRate);
        const double expected = std::abs((1.0 - c) * (1.0 - delay) / (1.0 - (1.0 - c) * delay));
        DcTracker tracker(kRate);
        std::complex<double> sum = 0.0;
        const int settle = 44100;
        const int window = 44100;  // whole periods of each frequency
        for (int n = 0; n < settle + window; ++n) {
            const double y = tracker.process(static_cast<float>(std::sin(kTwoPi * frequency * n / kRate)));
            if (n >= settle) sum += y * std::polar(2.0 / window, -kTwoPi * frequency * n / kRate);
        }
        EXPECT_NEAR(std::abs(sum), expected, 1e-3) << frequency;
        if (frequency == 5.0) {
            EXPECT_NEAR(expected, std::sqrt(0.5), 1e-3) << "3 dB down";
        }
    }
}

TEST(InputRangeCombiner, AQuietSignalIsTheSensitiveRangeDividedByTheGainDifference) {
    InputRangeCombiner combiner(kRate, 20.0f);
    bool isLoud = false;
    for (int n = 0; n < 1000; ++n) {
        const float x = 0.4f * static_cast<float>(std::sin(kTwoPi * 440.0 * n / kRate));
        EXPECT_NEAR(combiner.process(x, 99.0f, isLoud), 0.1 * x, 1e-8);
        EXPECT_FALSE(isLoud);
    }
}

TEST(InputRangeCombiner, ALoudSignalBecomesTheRobustRange) {
    InputRangeCombiner combiner(kRate, 20.0f);
    bool isLoud = false;
    float y = 0.0f;
    for (int n = 0; n < 4410; ++n)
        y = combiner.process(1.0f, 0.7f, isLoud);
    EXPECT_TRUE(isLoud);
    EXPECT_NEAR(y, 0.7, 1e-5);
}

TEST(InputRangeCombiner, MatchedRangesGiveOneSignalAtEveryGain) {
    InputRangeCombiner combiner(kRate, 12.0f);
    const double ratio = std::pow(10.0, -12.0 / 20.0);
    bool isLoud = false;
    for (int n = 0; n < 44100; ++n) {
        const double x = 0.9 * std::sin(kTwoPi * 3.0 * n / kRate) * std::sin(kTwoPi * 500.0 * n / kRate);
        const float y = combiner.process(static_cast<float>(x), static_cast<float>(x * ratio), isLoud);
        ASSERT_NEAR(y, x * ratio, 1e-6);
    }
}

// Samples until the flag changes, level held.
int samplesUntil(InputRangeCombiner& combiner, float level, bool& isLoud) {
    const bool before = isLoud;
    int n = 0;
    while (isLoud == before && n < 200000) {
        combiner.process(level, 0.0f, isLoud);
        ++n;
    }
    return n;
}

// The envelope rises as 1 - exp(-n / (fs tau)) with tau of 1000 Hz.
TEST(InputRangeCombiner, TheEnvelopeReachesTheUpThresholdWithACornerOf1000Hz) {
    for (const double level : {1.0, 0.8, 0.6, 0.52}) {
        InputRangeCombiner combiner(kRate, 20.0f);
        bool isLoud = false;
        const double expected = -kRate / (kTwoPi * 1000.0) * std::log(1.0 - 0.5 / level);
        EXPECT_NEAR(samplesUntil(combiner, static_cast<float>(level), isLoud), std::ceil(expected), 1.0);
    }
}

TEST(InputRangeCombiner, TheEnvelopeFallsToTheDownThresholdWithACornerOf1Hz) {
    InputRangeCombiner combiner(kRate, 20.0f);
    bool isLoud = false;
    for (int n = 0; n < 1000; ++n)
        combiner.process(0.8f, 0.0f, isLoud);
    ASSERT_TRUE(isLoud);
    const double expected = kRate / kTwoPi * std::log(0.8 / 0.25);
    EXPECT_NEAR(samplesUntil(combiner, 0.0f, isLoud), expected, 0.001 * expected);
}

TEST(InputRangeCombiner, BetweenTheThresholdsTheRangeStays) {
    InputRangeCombiner quiet(kRate, 20.0f);
    bool isLoud = false;
    for (int n = 0; n < 44100; ++n)
        quiet.process(0.45f, 0.0f, isLoud);
    EXPECT_FALSE(isLoud);

    InputRangeCombiner loud(kRate, 20.0f);
    for (int n = 0; n < 4410; ++n)
        loud.process(0.6f, 0.0f, isLoud);
    EXPECT_TRUE(isLoud);
    for (int n = 0; n < 88200; ++n)
        loud.process(0.3f, 0.0f, isLoud);
    EXPECT_TRUE(isLoud);
}

TEST(InputRangeCombiner, OverloadIsCountedAsFullScaleAtTheThresholdsAndFallsFromItsTrueHeight) {
    InputRangeCombiner combiner(kRate, 20.0f);
    bool isLoud = false;
    for (int n = 0; n < 4410; ++n)
        combiner.process(2.0f, 0.0f, isLoud);
    const double expected = kRate / kTwoPi * std::log(2.0 / 0.25);
    EXPECT_NEAR(samplesUntil(combiner, 0.0f, isLoud), expected, 0.001 * expected);
}

TEST(InputRangeCombiner, TheCrossfadeIsAOnePoleOf100Hz) {
    // Samples in which the envelope of 0.9 is not above 0.25 yet: each clears the flag again.
    const int kBelowDown = static_cast<int>(-kRate / (kTwoPi * 1000.0) * std::log(1.0 - 0.25 / 0.9));
    InputRangeCombiner combiner(kRate, 20.0f);
    for (int n = 1; n <= 2000; ++n) {
        bool isLoud = true;  // as if the other input were loud
        const float y = combiner.process(0.9f, 1.0f, isLoud);
        const double start = std::exp(-kTwoPi * 100.0 * std::max(0, n - kBelowDown) / kRate);
        ASSERT_NEAR(y, (1.0 - start) + 0.09 * start, 2e-5) << n;
    }
}

class InputStageTest : public testing::Test {
protected:
    // One frame with the same values in each call; returns the outputs of the last.
    void run(InputStage& stage, int frames, float x0, float x1, float x2, float x3) {
        for (int n = 0; n < frames; ++n) {
            // Alternating signs carry no DC.
            const float sign = n % 2 == 0 ? 1.0f : -1.0f;
            const float frame[6] = {sign * x0, sign * x1, sign * x2, sign * x3, 5.0f, 5.0f};
            stage.process(frame, 6, 1, &input0, &input1, &sum);
        }
        input0 = std::abs(input0);
        input1 = std::abs(input1);
    }
    float input0 = 0.0f;
    float input1 = 0.0f;
    float sum = 0.0f;
};

TEST_F(InputStageTest, TheFirstPairFeedsGraphInputOneAndTheSecondInputZero) {
    InputStage stage(kRate, 20.0f);
    run(stage, 10000, 0.1f, 0.0f, 0.2f, 0.0f);
    EXPECT_NEAR(input1, 0.01, 1e-4);
    EXPECT_NEAR(input0, 0.02, 1e-4);
}

TEST_F(InputStageTest, TheSumIsThatOfBothInputs) {
    InputStage stage(kRate, 6.0f);
    std::vector<float> frames;
    for (int n = 0; n < 32 * 6; ++n)
        frames.push_back(0.3f * std::sin(static_cast<float>(n * n)));
    float out0[32], out1[32], mono[32];
    stage.process(frames.data(), 6, 32, out0, out1, mono);
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(mono[i], out0[i] + out1[i]);
}

TEST_F(InputStageTest, AConstantFullScaleIsCancelledWithinAFractionOfASecond) {
    InputStage stage(kRate, 20.0f);
    const float frame[6] = {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f};
    for (int n = 0; n < 22050; ++n)
        stage.process(frame, 6, 1, &input0, &input1, &sum);
    EXPECT_NEAR(input0, 0.0, 1e-4);
    EXPECT_NEAR(input1, 0.0, 1e-4);
}

TEST_F(InputStageTest, ALoudSignalOnOneInputMovesTheOtherWithIt) {
    // At 0.4 the second pair alone stays on its sensitive range.
    InputStage alone(kRate, 20.0f);
    run(alone, 10000, 0.0f, 0.0f, 0.4f, 0.9f);
    EXPECT_NEAR(input0, 0.04, 1e-3);

    InputStage coupled(kRate, 20.0f);
    run(coupled, 10000, 0.8f, 0.5f, 0.4f, 0.9f);
    EXPECT_NEAR(input1, 0.5, 1e-3);
    EXPECT_NEAR(input0, 0.9, 1e-3);
}

TEST_F(InputStageTest, TheRangeSurvivesFromBlockToBlock) {
    InputStage stage(kRate, 20.0f);
    run(stage, 10000, 0.8f, 0.5f, 0.8f, 0.5f);
    run(stage, 64, 0.3f, 0.2f, 0.3f, 0.2f);
    EXPECT_NEAR(input1, 0.2, 1e-3) << "0.3 lies above the threshold down and below the one up";
}

TEST(OutputFade, RisesFromZeroWithACornerOfFourHertz) {
    OutputFade fade(kRate);
    EXPECT_EQ(fade.next(), 0.0f);
    fade.setMuted(false);
    for (int n = 1; n <= 44100; ++n)
        ASSERT_NEAR(fade.next(), 1.0 - std::exp(-kTwoPi * 4.0 * n / kRate), 2e-4) << n;
}

TEST(OutputFade, FallsAgainWhenMuted) {
    OutputFade fade(kRate);
    fade.setMuted(false);
    for (int n = 0; n < 88200; ++n)
        fade.next();
    fade.setMuted(true);
    for (int n = 1; n <= 11025; ++n)
        ASSERT_NEAR(fade.next(), std::exp(-kTwoPi * 4.0 * n / kRate), 2e-4) << n;
}

}  // namespace
