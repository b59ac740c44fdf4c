#include <cmath>
#include <gtest/gtest.h>

#include "algorithms/amp/PowerSupply.h"

namespace {

constexpr float kSampleRate = 44100.0f;

double settledFactor(PowerSupply& supply, float level) {
    double factor = 0.0;
    for (int n = 0; n < 88200; ++n)
        factor = supply.tick(level);
    return factor;
}

// At a constant level a the envelope rests where one discharge and one charge cancel.
double settledEnvelope(double a, double attackCoef, double releaseCoef) {
    return a * attackCoef / (1.0 - (1.0 - releaseCoef) * (1.0 - attackCoef));
}

TEST(PowerSupply, AQuietSignalIsLeftAsItIs) {
    PowerSupply supply(0.001f, 0.1f, 0.5f, 0.6f, kSampleRate, 1.0f);
    EXPECT_NEAR(settledFactor(supply, 0.01f), 1.0, 1e-6);
}

TEST(PowerSupply, TheFactorFollowsTheEnvelopeByTheKneeOverIt) {
    for (const double threshold : {0.0, 0.3, 1.0})
        for (const double depth : {0.0, 0.5, 1.0})
            for (const double level : {0.5, 2.0, 40.0}) {
                PowerSupply supply(0.001f, 0.1f, float(threshold), float(depth), kSampleRate, 1.0f);
                const double attack = 1.0 - std::exp(-1.0 / (0.001 * kSampleRate));
                const double release = 1.0 - std::exp(-1.0 / (0.1 * kSampleRate));
                const double knee = 0.001 + threshold * 0.7069458;
                const double floor = depth * -0.88789 + 0.9990011;
                const double norm = 1.0 / (depth * -0.88789 + 1.999001);
                const double ratio = std::min(knee / settledEnvelope(level, attack, release), 1.0);
                EXPECT_NEAR(settledFactor(supply, float(level)), (floor + ratio) * norm, 2e-4)
                    << threshold << " " << depth << " " << level;
            }
}

TEST(PowerSupply, AHugeSignalEndsAtTheFloor) {
    PowerSupply supply(0.001f, 0.1f, 0.5f, 1.0f, kSampleRate, 1.0f);
    EXPECT_NEAR(settledFactor(supply, 1e7f), (0.9990011 - 0.88789) / (1.999001 - 0.88789), 1e-5);
}

TEST(PowerSupply, RechargesWithTheReleaseTimeOnSilence) {
    PowerSupply supply(0.0005f, 0.05f, 0.1f, 0.5f, kSampleRate, 1.0f);
    settledFactor(supply, 100.0f);
    const double knee = 0.001 + 0.1 * 0.7069458;
    const auto envelope = [&](double factor) {
        return knee / (factor * (1.999001 - 0.5 * 0.88789) - (0.9990011 - 0.5 * 0.88789));
    };
    const double start = envelope(supply.tick(0.0f));
    double end = 0.0;
    for (int n = 0; n < 2205; ++n)  // 50 ms
        end = envelope(supply.tick(0.0f));
    EXPECT_NEAR(end / start, std::exp(-1.0), 2e-3);
}

TEST(PowerSupply, TheArrayMeansAttackReleaseThresholdDepth) {
    const float parameters[4] = {0.002f, 0.2f, 0.3f, 0.7f};
    PowerSupply fromArray(parameters, kSampleRate, 1.0f);
    PowerSupply fromValues(0.002f, 0.2f, 0.3f, 0.7f, kSampleRate, 1.0f);
    for (int n = 0; n < 1000; ++n)
        ASSERT_EQ(fromArray.tick(5.0f), fromValues.tick(5.0f));
}

TEST(PowerSupply, SettersDesignWhatTheConstructorDesigns) {
    PowerSupply set(0.01f, 0.5f, 0.1f, 0.1f, kSampleRate, 1.0f);
    set.setAttack(0.002f);
    set.setRelease(0.2f);
    set.setThreshold(0.3f);
    set.setDepth(0.7f);
    PowerSupply built(0.002f, 0.2f, 0.3f, 0.7f, kSampleRate, 1.0f);
    EXPECT_EQ(set.design().curve, built.design().curve);
    for (int n = 0; n < 1000; ++n)
        ASSERT_EQ(set.tick(5.0f), built.tick(5.0f));
}

TEST(PowerSupply, TheCurveConstantIsThatOfDepthAndKnee) {
    PowerSupply supply(0.01f, 0.5f, 0.4f, 0.3f, kSampleRate, 1.0f);
    const double b = 2.001 + 0.3 * 7.999;
    const double t = 0.001 + 0.4 * 0.7069458;
    EXPECT_NEAR(supply.design().curve, (t * t + 1 - b - 2 * t) / (b * t * t - 2 * b * t), 1e-5);
}

TEST(PowerSupply, ApplyMultipliesFactorAndOutScale) {
    PowerSupply supply(0.001f, 0.1f, 0.5f, 0.6f, kSampleRate, 0.25f);
    EXPECT_FLOAT_EQ(supply.apply(8.0f, 0.5f), 1.0f);
}

TEST(PowerSupply, ResetForgetsTheLoudPast) {
    PowerSupply supply(0.001f, 0.1f, 0.1f, 1.0f, kSampleRate, 1.0f);
    const float first = supply.tick(0.05f);
    settledFactor(supply, 50.0f);
    supply.reset();
    EXPECT_EQ(supply.tick(0.05f), first);
}

}  // namespace
