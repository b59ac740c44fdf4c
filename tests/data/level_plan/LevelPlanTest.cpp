// The level plan that the valve curves are chosen for, measured on the amp itself: 1 kHz, every knob at panel
// 5, bright off, one channel alone, at the power amp's output before the speaker's impedance curve.
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "algorithms/amp/ArvelReverb65.h"

namespace {

constexpr int kBlock = 32;
constexpr double kRateHz = 44100.0;
constexpr int kMeasuredSamples = 8820;  // 200 whole periods of 1 kHz
constexpr float kPanel5 = 4.0F / 9.0F;

enum class Channel { Normal, Vibrato };

struct Result {
    double peakVolts;
    double distortion;  // of all harmonics, over the fundamental
    double second;      // over the fundamental
};

double harmonicVolts(const std::vector<double>& x, int order) {
    double re = 0.0, im = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n) {
        const double phase = 2.0 * std::numbers::pi * 1000.0 * order * static_cast<double>(n) / kRateHz;
        re += x[n] * std::cos(phase);
        im += x[n] * std::sin(phase);
    }
    return std::hypot(re, im) * 2.0 / static_cast<double>(x.size());
}

Result measure(Channel channel, double jackVolts) {
    // Samples in are volts at the jack, samples out are 101 volts each.
    ArvelReverb65 amp(kBlock, static_cast<float>(kRateHz), 1.0F, false);
    amp.setGain(kPanel5, true);
    amp.setBass(kPanel5, true);
    amp.setMid(kPanel5, true);
    amp.setTreb(kPanel5, true);
    amp.setBrightSw(false, true);

    std::vector<float> guitar(kBlock), silence(kBlock), speaker(kBlock), line(kBlock);
    std::vector<double> out;
    for (int n = 0; n < static_cast<int>(kRateHz); ++n) {
        guitar[n % kBlock] =
            static_cast<float>(jackVolts * std::sin(2.0 * std::numbers::pi * 1000.0 * n / kRateHz));
        if (n % kBlock != kBlock - 1) continue;
        const bool normal = channel == Channel::Normal;
        amp.process(normal ? guitar.data() : silence.data(), normal ? silence.data() : guitar.data(),
                    speaker.data(), line.data());
        for (float sample : speaker)
            out.push_back(static_cast<double>(sample) * ArvelReverb65::kFullPowerVolts);
    }
    const std::vector<double> settled(out.end() - kMeasuredSamples, out.end());
    Result result{};
    for (double volts : settled)
        result.peakVolts = std::fmax(result.peakVolts, std::abs(volts));
    const double fundamental = harmonicVolts(settled, 1);
    double power = 0.0;
    for (int order = 2; order <= 20; ++order)
        power += std::pow(harmonicVolts(settled, order), 2);
    result.distortion = std::sqrt(power) / fundamental;
    result.second = harmonicVolts(settled, 2) / fundamental;
    return result;
}

class LevelPlan : public testing::TestWithParam<Channel> {};

TEST_P(LevelPlan, TenMillivoltsAreCleanAtOneToTwoVolts) {
    const Result result = measure(GetParam(), 0.010);
    EXPECT_LT(result.distortion, 0.02);
    EXPECT_GE(result.peakVolts, 1.0);
    EXPECT_LE(result.peakVolts, 2.0);
}

TEST_P(LevelPlan, AHundredMillivoltsAreWarmAtTenToTwentyVolts) {
    const Result result = measure(GetParam(), 0.100);
    EXPECT_GE(result.distortion, 0.02);
    EXPECT_LE(result.distortion, 0.25);
    EXPECT_GE(result.peakVolts, 10.0);
    EXPECT_LE(result.peakVolts, 20.0);
}

TEST_P(LevelPlan, ThreeHundredMillivoltsReachThePowerAmpsLimit) {
    const Result result = measure(GetParam(), 0.300);
    EXPECT_NEAR(result.peakVolts, 26.0, 1.0);
    EXPECT_LT(measure(GetParam(), 1.0).peakVolts, 1.1 * result.peakVolts);
}

// Twice the input, four times the second harmonic: a square law where the amp is clean.
TEST_P(LevelPlan, SecondHarmonicRisesTwelveDecibelsForSix) {
    const Result one = measure(GetParam(), 0.005), two = measure(GetParam(), 0.010);
    EXPECT_NEAR(20.0 * std::log10(two.second * two.peakVolts / (one.second * one.peakVolts)), 12.0, 1.5);
}

INSTANTIATE_TEST_SUITE_P(Channels, LevelPlan, testing::Values(Channel::Normal, Channel::Vibrato),
                         [](const auto& channel) {
                             return channel.param == Channel::Normal ? "normal" : "vibrato";
                         });

}  // namespace
