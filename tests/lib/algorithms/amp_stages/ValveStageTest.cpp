#include <cmath>
#include <gtest/gtest.h>

#include "StageReference.h"
#include "algorithms/amp/ValveStage.h"

namespace {

using namespace stage_reference;

constexpr double kRateHz = 44100.0;

// The five preamp stages are the first of the list.
class PreampStage : public testing::TestWithParam<int> {
protected:
    ValveStage make(int block) const {
        return {block,
                static_cast<float>(kRateHz),
                static_cast<float>(transfer.inputRange),
                static_cast<float>(transfer.outputMin),
                static_cast<float>(transfer.outputMax),
                transfer.curve};
    }
    double swing() const { return transfer.outputMax - transfer.outputMin; }
    Transfer transfer = ampTransfers().at(static_cast<std::size_t>(GetParam()));
};

INSTANTIATE_TEST_SUITE_P(Five, PreampStage, testing::Range(0, 5));

TEST_P(PreampStage, SilenceGivesZeroFromTheFirstBlock) {
    auto stage = make(32);
    EXPECT_EQ(through(stage, Signal(320, 0.0f), 32), Signal(320, 0.0f));
}

TEST_P(PreampStage, IsHoldFilterCurveFilterDecimationAndHighPass) {
    auto stage = make(32);
    const Signal in = noise(1600, static_cast<float>(transfer.inputRange) * 1.2f);
    const Signal out = through(stage, in, 32);
    auto truth = oversampled(in, 3, 10, transfer);
    highPass(truth, 5.0, kRateHz);
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(out[n], truth[n], 3e-6 * swing()) << n;
}

TEST_P(PreampStage, EveryBlockSizeGivesTheSameStream) {
    const Signal in = noise(1344, static_cast<float>(transfer.inputRange));
    auto whole = make(1344);
    const Signal expected = through(whole, in, 1344);
    for (const int block : {1, 7, 8, 32, 64}) {
        auto stage = make(block);
        const Signal out = through(stage, in, block);
        for (std::size_t n = 0; n < in.size(); ++n)
            // The high-pass recirculates its roundings for some 1 / (1 - pole) = 1400 samples.
            ASSERT_NEAR(out[n], expected[n], 3e-6 * swing()) << block << ' ' << n;
    }
}

TEST_P(PreampStage, SmallSignalsAreAmplifiedByTheSlopeAtRest) {
    auto stage = make(32);
    const Signal out = through(stage, sine(1000.0, 1e-3, 17664), 32);
    const double slope = (transfer(1e-3f) - transfer(-1e-3f)) / 2.0;  // volts per millivolt
    const double gain = std::abs(tone(&out[out.size() - 8820], 8820, 1000.0));
    EXPECT_LT(std::abs(decibel(gain / std::abs(slope))), 0.15);
    EXPECT_LT(slope, 0.0) << "a common-cathode stage inverts";
}

TEST_P(PreampStage, InputsFarBeyondTheRangeStayAtTheLimits) {
    for (const float volts : {1000.0f, -1000.0f}) {
        auto stage = make(32);
        const Signal out = through(stage, Signal(32, volts), 32);
        // The filters have settled 21 samples after the step, the 5 Hz high-pass has lost 2 % at most.
        const double limit = transfer(volts);
        EXPECT_GT(out[31] / limit, 0.97);
        EXPECT_LT(out[31] / limit, 1.0001);
    }
}

TEST_P(PreampStage, AStepDecaysWithTheFiveHertzTimeConstant) {
    auto stage = make(32);
    const auto volts = static_cast<float>(transfer.inputRange * 0.5);
    const Signal out = through(stage, Signal(6400, volts), 32);
    const double decay = std::exp(-kTurn * 5.0 / kRateHz * 2000.0);
    EXPECT_NEAR(out[2100] / double{out[100]}, decay, 1e-3 * decay);
    EXPECT_NEAR(out[6100] / double{out[100]}, decay * decay * decay, 1e-3);
}

TEST_P(PreampStage, WhatAFiveKilohertzSineFoldsIntoTheBandIsSixtyDecibelBelow) {
    auto stage = make(32);
    const Signal out = through(stage, sine(5000.0, 0.1 * transfer.inputRange, 35296), 32);
    // 441 samples hold 50 periods; harmonics and what folds lie on multiples of 100 Hz.
    const float* settled = &out[out.size() - 4410];
    const double fundamental = std::abs(tone(settled, 4410, 5000.0));
    double folded = 0.0;
    for (double frequency = 100.0; frequency < 15000.0; frequency += 100.0) {
        if (std::fmod(frequency, 5000.0) == 0.0) continue;
        folded += std::norm(tone(settled, 4410, frequency));
    }
    EXPECT_LT(decibel(std::sqrt(folded) / fundamental), -60.0);
}

}  // namespace
