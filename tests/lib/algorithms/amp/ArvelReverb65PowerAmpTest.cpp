#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "HarmonicProbe.h"
#include "algorithms/amp/ArvelReverb65PowerAmp.h"
#include "tables/ArvelReverb65Curves.h"

namespace {

constexpr int kBlock = 32;
constexpr float kSampleRate = 44100.0f;
constexpr int kWindow = 4096;  // 93 ms
constexpr int k1kHz = 93;
constexpr int k100Hz = 9;

// With both valves at their limits: the sum of the outputs, less the rest current, through the last gain.
constexpr double kUpperLimitVolts = (18.84547 - 0.09345604 + 0.42840672) * 1.3489629;
constexpr double kLowerLimitVolts = (-18.85376 + 0.08957769 + 0.42840672) * 1.3489629;

Harmonics drive(double peakVolts, int cycles, int settleWindows = 4) {
    ArvelReverb65PowerAmp amp(kBlock, kSampleRate);
    return probe([&](float* block) { amp.process(block); }, peakVolts, cycles, kWindow, settleWindows);
}

// Slope of a stored curve at 0, per unit of normalised input.
double slopeAtZero(const tables::ValveCurve& curve) {
    const auto* breakpoint = std::lower_bound(curve.breakpoints, curve.breakpoints + 7, 0.0f);
    return curve.segments[breakpoint - curve.breakpoints][2];
}

double stageGain(const tables::ValveCurve& curve, double range, double low, double high) {
    return slopeAtZero(curve) / range * 0.5 * (high - low);
}

TEST(ArvelReverb65PowerAmp, SilenceInSettlesToSilenceOut) {
    ArvelReverb65PowerAmp amp(kBlock, kSampleRate);
    float block[kBlock];
    for (int i = 0; i < 2000; ++i) {
        std::fill_n(block, kBlock, 0.0f);
        amp.process(block);
        for (const float y : block)
            ASSERT_LT(std::abs(y), 3e-5f);  // what the two rest currents miss of each other
    }
    for (const float y : block)
        EXPECT_LT(std::abs(y), 1e-12f);
}

TEST(ArvelReverb65PowerAmp, SmallSignalGainIsThatOfTheTwoLegs) {
    const double a = stageGain(tables::kArvelReverb65PhaseInverterA, 10.0, 119.4794, 366.59479) * 1.2445146 *
                     0.53088444 * stageGain(tables::kArvelReverb65OutputValveA, 50.0, -18.85376, -0.09345604);
    const double b = stageGain(tables::kArvelReverb65PhaseInverterB, 10.0, 106.0296, 358.5621) * 1.2119927 *
                     0.53088444 * stageGain(tables::kArvelReverb65OutputValveB, 50.0, 0.08957769, 18.84547);
    const double expected = 0.37800714 * (a + b) * 1.3489629;
    EXPECT_GT(expected, 0.0);
    EXPECT_NEAR(20.0 * std::log10(drive(0.01, k1kHz).amplitude[1] / 0.01 / expected), 0.0, 0.2);
}

TEST(ArvelReverb65PowerAmp, TheValvesLimitTheOutputNearTwentySixVolts) {
    EXPECT_NEAR(kUpperLimitVolts, 25.87, 0.01);
    for (const double peak : {50.0, 200.0, 1000.0}) {
        const Harmonics out = drive(peak, k100Hz);
        EXPECT_LT(out.rms, kUpperLimitVolts) << peak;
        EXPECT_LT(out.amplitude[1], 4.0 / std::numbers::pi * kUpperLimitVolts) << peak;
        EXPECT_GT(out.amplitude[1], 0.9 * -kLowerLimitVolts) << peak;
    }
}

// The clipped tops of a slow wave, past the ringing of the filters, lie between the limits; the bias shift of
// the coupling capacitors only takes away from them.
TEST(ArvelReverb65PowerAmp, FlatTopsStayBetweenTheStaticLimits) {
    ArvelReverb65PowerAmp amp(kBlock, kSampleRate);
    double highest = 0.0;
    double lowest = 0.0;
    for (int start = 0; start < 44100; start += kBlock) {
        float block[kBlock];
        for (int n = 0; n < kBlock; ++n)
            block[n] =
                static_cast<float>(60.0 * std::sin(2.0 * std::numbers::pi * 200.0 * (start + n) / 44100.0));
        amp.process(block);
        if (start < 22050) continue;
        for (const float y : block) {
            highest = std::max(highest, double(y));
            lowest = std::min(lowest, double(y));
        }
    }
    // The filters' overshoot at an edge is at most that of an ideal low-pass, 9 % of the step, twice over.
    const double overshoot = 0.18 * (kUpperLimitVolts - kLowerLimitVolts);
    EXPECT_LT(highest, kUpperLimitVolts + overshoot);
    EXPECT_GT(lowest, kLowerLimitVolts - overshoot);
    EXPECT_GT(highest, 15.0);
    EXPECT_LT(lowest, -15.0);
}

TEST(ArvelReverb65PowerAmp, UnequalLegsLeaveEvenHarmonicsWeakerThanOddOnes) {
    const Harmonics out = drive(20.0, k1kHz);
    EXPECT_GT(out.db(2), -70.0);
    EXPECT_LT(out.db(2), out.db(3));
}

TEST(ArvelReverb65PowerAmp, NoDirectVoltageLeavesTheTransformer) {
    for (const double peak : {1.0, 20.0, 100.0}) {
        const Harmonics out = drive(peak, k1kHz, 12);
        EXPECT_LT(out.amplitude[0], 1e-4 * out.amplitude[1]) << peak;
    }
    ArvelReverb65PowerAmp amp(kBlock, kSampleRate);
    float block[kBlock];
    for (int i = 0; i < 4000; ++i) {
        std::fill_n(block, kBlock, 2.0f);
        amp.process(block);
    }
    for (const float y : block)
        EXPECT_LT(std::abs(y), 1e-3f);
}

// A burst drives the grids into conduction; the shifted bias cuts a small signal's gain until the coupling
// capacitors have discharged, in 23 ms each time constant.
TEST(ArvelReverb65PowerAmp, AfterABurstTheGainOfASmallSignalComesBackWithTheBias) {
    const auto smallSignalLevels = [](bool withBurst) {
        ArvelReverb65PowerAmp amp(kBlock, kSampleRate);
        std::vector<double> levels;  // rms of stretches of 441 samples behind the burst
        double sum = 0.0;
        int count = 0;
        for (int start = 0; start < 44096; start += kBlock) {
            float block[kBlock];
            for (int n = 0; n < kBlock; ++n) {
                const bool burst = withBurst && start < 13216;
                block[n] =
                    static_cast<float>((burst ? 100.0 : 0.2) *
                                       std::sin(2.0 * std::numbers::pi * 3000.0 * (start + n) / 44100.0));
            }
            amp.process(block);
            if (start < 13216 + 64) continue;  // past the filters' delay
            for (const float y : block) {
                sum += double(y) * y;
                if (++count == 441) {
                    levels.push_back(std::sqrt(sum / 441));
                    sum = 0.0;
                    count = 0;
                }
            }
        }
        return levels;
    };
    const std::vector<double> burst = smallSignalLevels(true);
    const std::vector<double> calm = smallSignalLevels(false);
    const auto loss = [&](std::size_t i) { return 1.0 - burst[i] / calm[i]; };
    EXPECT_GT(loss(0), 0.1);
    EXPECT_LT(std::abs(loss(25)), 0.01);  // 250 ms
}

TEST(ArvelReverb65PowerAmp, TheBlockLengthDoesNotChangeTheSound) {
    std::vector<float> in(44100);
    for (std::size_t n = 0; n < in.size(); ++n)
        in[n] = static_cast<float>(15.0 * std::sin(0.03 * double(n)) + 10.0 * std::sin(0.071 * double(n)));
    std::vector<float> expected = in;
    ArvelReverb65PowerAmp reference(kBlock, kSampleRate);
    for (std::size_t start = 0; start + kBlock <= in.size(); start += kBlock)
        reference.process(expected.data() + start);
    for (const int length : {1, 7, 20, 64}) {
        std::vector<float> out = in;
        ArvelReverb65PowerAmp amp(length, kSampleRate);
        const std::size_t step = static_cast<std::size_t>(length);
        for (std::size_t start = 0; start + step <= in.size(); start += step)
            amp.process(out.data() + start);
        for (std::size_t n = 0; n < 44000; ++n)
            ASSERT_NEAR(out[n], expected[n], 2e-3) << length << " at " << n;
    }
}

}  // namespace
