#include <cmath>
#include <gtest/gtest.h>

#include "StageReference.h"
#include "algorithms/amp/OutputSoftClipper.h"

namespace {

using namespace stage_reference;

constexpr float kRateHz = 44100.0f;

const Transfer kSoftClip{tables::kOutputSoftClip, 1.0, -1.0, 1.0};

TEST(OutputSoftClipper, IsOversamplingCurveAndDecimation) {
    OutputSoftClipper clipper(32, 0.0f, kRateHz);
    const Signal in = noise(1600, 1.5f);
    const Signal out = through(clipper, in, 32);
    const auto truth = oversampled(in, 5, 10, kSoftClip);
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(out[n], truth[n], 3e-6) << n;
}

TEST(OutputSoftClipper, SilenceGivesExactlyZero) {
    OutputSoftClipper clipper(32, 0.0f, kRateHz);
    EXPECT_EQ(through(clipper, Signal(320, 0.0f), 32), Signal(320, 0.0f));
}

TEST(OutputSoftClipper, BelowThreeQuartersOfTheThresholdASinePassesClean) {
    OutputSoftClipper clipper(32, 0.0f, kRateHz);
    const Signal out = through(clipper, sine(1000.0, 0.7, 35328), 32);
    const float* settled = &out[out.size() - 4410];
    EXPECT_LT(std::abs(decibel(std::abs(tone(settled, 4410, 1000.0)) / 0.7)), 0.15);
    for (int harmonic = 2; harmonic <= 15; ++harmonic)
        EXPECT_LT(decibel(std::abs(tone(settled, 4410, 1000.0 * harmonic))), -110.0) << harmonic;
}

TEST(OutputSoftClipper, NothingGetsBeyondTheThreshold) {
    for (const float thresholdDb : {0.0f, -6.0f, 6.0f}) {
        const double threshold = std::pow(10.0, thresholdDb * -0.05);
        const double flatTop = kSoftClip(1.0f) * threshold;
        OutputSoftClipper clipper(32, thresholdDb, kRateHz);
        const Signal constant = through(clipper, Signal(64, 10.0f), 32);
        EXPECT_NEAR(constant.back(), flatTop, 2e-6 * threshold);
        const Signal out = through(clipper, sine(100.0, 10.0, 8832), 32);
        double peak = 0.0;
        for (std::size_t n = 64; n < out.size(); ++n)
            peak = std::max(peak, std::abs(double{out[n]}));
        EXPECT_LT(peak, threshold);
        EXPECT_NEAR(peak, flatTop, 0.02 * threshold);
    }
}

TEST(OutputSoftClipper, IsOddSoThatASymmetricSineGetsOddHarmonicsOnly) {
    OutputSoftClipper clipper(32, 0.0f, kRateHz);
    const Signal out = through(clipper, sine(500.0, 3.0, 35328), 32);
    const float* settled = &out[out.size() - 4410];
    EXPECT_GT(decibel(std::abs(tone(settled, 4410, 1500.0))), -30.0);
    for (int harmonic = 2; harmonic <= 20; harmonic += 2)
        EXPECT_LT(decibel(std::abs(tone(settled, 4410, 500.0 * harmonic))), -100.0) << harmonic;
}

TEST(OutputSoftClipper, WhatAClippedSineFoldsIntoTheBandIsSixtyDecibelBelow) {
    OutputSoftClipper clipper(32, 0.0f, kRateHz);
    const Signal out = through(clipper, sine(5000.0, 2.0, 35328), 32);
    const float* settled = &out[out.size() - 4410];
    double folded = 0.0;
    for (double frequency = 100.0; frequency < 15000.0; frequency += 100.0) {
        if (std::fmod(frequency, 5000.0) != 0.0) folded += std::norm(tone(settled, 4410, frequency));
    }
    EXPECT_LT(decibel(std::sqrt(folded) / std::abs(tone(settled, 4410, 5000.0))), -60.0);
}

TEST(OutputSoftClipper, EveryBlockSizeGivesTheSameStream) {
    const Signal in = noise(1344, 2.0f);
    OutputSoftClipper whole(1344, -3.0f, kRateHz);
    const Signal expected = through(whole, in, 1344);
    for (const int block : {1, 7, 8, 32, 64}) {
        OutputSoftClipper clipper(block, -3.0f, kRateHz);
        EXPECT_EQ(through(clipper, in, block), expected) << block;
    }
}

}  // namespace
