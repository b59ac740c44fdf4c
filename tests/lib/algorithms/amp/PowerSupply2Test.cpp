#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "algorithms/amp/ArvelReverb65PowerSupply.h"
#include "algorithms/amp/PowerSupply2.h"

namespace {

constexpr float kSampleRate = 44100.0f;

double settledGain(PowerSupply2& supply, float volts) {
    double gain = 0.0;
    for (int n = 0; n < 44100; ++n)
        gain = supply.tick(volts) / volts;
    return gain;
}

TEST(PowerSupply2, GainIsOneBelowTheThreshold) {
    PowerSupply2 supply(0.001f, 0.1f, 101.0f, 2.0f, kSampleRate, 1.0f);
    for (int n = 0; n < 1000; ++n) {
        const auto x = static_cast<float>(100.0 * std::sin(0.1 * n));
        ASSERT_NEAR(supply.tick(x), x, 2e-5);
    }
}

TEST(PowerSupply2, AboveTheThresholdTheGainIsThresholdOverLevelPlusInverseRatio) {
    for (const double ratio : {1.0, 2.0, 8.0})
        for (const double volts : {150.0, 202.0, 1e5}) {
            PowerSupply2 supply(0.001f, 0.1f, 101.0f, float(ratio), kSampleRate, 1.0f);
            EXPECT_NEAR(settledGain(supply, float(volts)),
                        (101.0 / volts + 1.0 / ratio) / (1.0 / ratio + 1.0), 1e-5);
        }
}

TEST(PowerSupply2, AtRatioTwoTheGainEndsAtAThird) {
    PowerSupply2 supply(0.001f, 0.1f, 101.0f, 2.0f, kSampleRate, 1.0f);
    EXPECT_NEAR(settledGain(supply, 1e9f), 1.0 / 3.0, 1e-6);
}

TEST(PowerSupply2, InputScaleCountsAtTheDetectorOnly) {
    PowerSupply2 supply(0.001f, 0.1f, 100.0f, 2.0f, kSampleRate, 4.0f);
    EXPECT_NEAR(settledGain(supply, 50.0f), (100.0 / 200.0 + 0.5) / 1.5, 1e-5);
}

// The envelope, read back from the gain, at a step up and at a step down.
TEST(PowerSupply2, EnvelopeRisesWithTheAttackAndFallsWithTheReleaseTime) {
    PowerSupply2 supply(0.01f, 0.2f, 1.0f, 2.0f, kSampleRate, 1.0f);
    const auto envelope = [](double gain) { return 1.0 / (gain * 1.5 - 0.5); };
    double at = 0.0;
    for (int n = 0; n < 441; ++n)
        at = envelope(supply.tick(1000.0f) / 1000.0f);
    EXPECT_NEAR(at, 1000.0 * (1.0 - std::exp(-1.0)), 2.0);
    settledGain(supply, 1000.0f);
    for (int n = 0; n < 8820; ++n)
        at = envelope(supply.tick(1e-3f) / 1e-3f);
    EXPECT_NEAR(at, 1000.0 * std::exp(-1.0), 2.0);
}

TEST(PowerSupply2, TimesOfZeroAndBelowBecomeTenMicroseconds) {
    const float expected = static_cast<float>(1.0 - std::exp(-1.0 / (1e-5 * kSampleRate)));
    for (const float seconds : {0.0f, -1.0f}) {
        PowerSupply2 set(0.001f, 0.1f, 1.0f, 2.0f, kSampleRate, 1.0f);
        set.setAttackTime(seconds);
        set.setReleaseTime(seconds);
        const PowerSupply2 built(seconds, seconds, 1.0f, 2.0f, kSampleRate, 1.0f);
        for (const PowerSupply2* supply : {static_cast<const PowerSupply2*>(&set), &built}) {
            EXPECT_FLOAT_EQ(supply->design().attack, 1e-5f);
            EXPECT_FLOAT_EQ(supply->design().release, 1e-5f);
            EXPECT_FLOAT_EQ(supply->design().attackCoef, expected);
            EXPECT_FLOAT_EQ(supply->design().releaseCoef, expected);
        }
        EXPECT_TRUE(std::isfinite(set.tick(5.0f)));
    }
}

TEST(PowerSupply2, ARatioBelowOneIsTheShapeOfRatioOne) {
    PowerSupply2 set(0.001f, 0.1f, 1.0f, 2.0f, kSampleRate, 1.0f);
    set.setRatio(0.25f);
    const PowerSupply2 built(0.001f, 0.1f, 1.0f, 0.25f, kSampleRate, 1.0f);
    for (const PowerSupply2* supply : {static_cast<const PowerSupply2*>(&set), &built}) {
        EXPECT_EQ(supply->design().inverseRatio, 1.0f);
        EXPECT_EQ(supply->design().norm, 0.5f);
    }
}

TEST(PowerSupply2, ANegativeThresholdIsZeroAndDividesByNoZero) {
    PowerSupply2 supply(0.001f, 0.1f, -3.0f, 2.0f, kSampleRate, 1.0f);
    EXPECT_EQ(supply.design().threshold, 0.0f);
    supply.setThreshold(-1.0f);
    EXPECT_EQ(supply.design().threshold, 0.0f);
    EXPECT_EQ(supply.tick(0.0f), 0.0f);
    EXPECT_NEAR(settledGain(supply, 1.0f), 1.0 / 3.0, 1e-6);
}

TEST(PowerSupply2, ABlockIsItsSamplesOneByOne) {
    PowerSupply2 blocks(0.001f, 0.1f, 10.0f, 2.0f, kSampleRate, 1.0f);
    PowerSupply2 samples(0.001f, 0.1f, 10.0f, 2.0f, kSampleRate, 1.0f);
    std::vector<float> x(1000);
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = static_cast<float>(80.0 * std::sin(0.05 * double(n)) * std::exp(-0.003 * double(n)));
    std::vector<float> y = x;
    blocks.process(y.data(), 1000);
    for (std::size_t n = 0; n < x.size(); ++n)
        ASSERT_NEAR(y[n], samples.tick(x[n]), 1e-4f) << n;
}

TEST(PowerSupply2, ResetForgetsTheLoudPast) {
    PowerSupply2 supply(0.001f, 0.1f, 1.0f, 2.0f, kSampleRate, 1.0f);
    settledGain(supply, 1000.0f);
    EXPECT_LT(supply.tick(0.5f), 0.25f);
    supply.reset();
    EXPECT_FLOAT_EQ(supply.tick(0.5f), 0.5f);
}

TEST(ArvelReverb65PowerSupply, HasOneMillisecondAttackTenthSecondReleaseAndRatioTwo) {
    const ArvelReverb65PowerSupply supply(32, 101.0f, kSampleRate);
    EXPECT_EQ(supply.design().attack, 0.001f);
    EXPECT_EQ(supply.design().release, 0.1f);
    EXPECT_EQ(supply.design().threshold, 101.0f);
    EXPECT_EQ(supply.design().inverseRatio, 0.5f);
}

TEST(ArvelReverb65PowerSupply, SagsAboveItsThresholdOverABlock) {
    ArvelReverb65PowerSupply supply(32, 101.0f, kSampleRate);
    std::vector<float> x(32);
    for (int block = 0; block < 1000; ++block) {
        std::fill(x.begin(), x.end(), 202.0f);
        supply.process(x.data());
    }
    for (const float y : x)
        EXPECT_NEAR(y, 202.0 * (0.5 + 0.5) / 1.5, 1e-2);
}

TEST(ArvelReverb65PowerSupply, EverySagIsAcceptedAndSoundsTheSame) {
    ArvelReverb65PowerSupply untouched(32, 101.0f, kSampleRate);
    ArvelReverb65PowerSupply changed(32, 101.0f, kSampleRate);
    for (int block = 0; block < 60; ++block) {
        changed.setSag(block % 5 - 1);  // the three rows, and beyond them
        std::vector<float> a(32, 300.0f);
        std::vector<float> b = a;
        untouched.process(a.data());
        changed.process(b.data());
        ASSERT_EQ(a, b);
    }
}

}  // namespace
