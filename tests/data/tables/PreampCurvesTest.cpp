#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "AmpCurves.h"
#include "Circuits.h"
#include "Harmonic.h"

namespace {

// The circuits that the five curves stand for, in their order.
const std::array<circuits::CommonCathode, 5> kCircuits = {{
    {300.4954, 100e3, 1.7, 141271.4},
    {367.9945, 100e3, 1.45, 71345.6},
    {300.4954, 100e3, 1.5, 146319.6},
    {367.8785, 100e3, 2.0, 58367.1},
    {222.9329, 68750.0, 0.65, 2395.7},
}};

TEST(PreampCurves, FollowTheLoadLineOfTheTriode) {
    constexpr int kPoints = 401;
    for (std::size_t n = 0; n < kPreampCurves.size(); ++n) {
        const Curve& curve = kPreampCurves[n];
        for (int i = 0; i < kPoints; ++i) {
            const double x = -1.0 + 2.0 * i / (kPoints - 1);
            const double error = curve.volts(x * curve.inputRange) - kCircuits[n].plate(x * curve.inputRange);
            const bool atGridCurrent = std::abs(x - kCircuits[n].cathodeVolts / curve.inputRange) < 0.08;
            EXPECT_LE(std::abs(error), (atGridCurrent ? 0.06 : 0.015) * curve.half())
                << curve.name << " at " << x * curve.inputRange << " V";
        }
    }
}

TEST(PreampCurves, RestAndGainAreThoseOfTheCircuit) {
    for (std::size_t n = 0; n < kPreampCurves.size(); ++n) {
        const Curve& curve = kPreampCurves[n];
        constexpr double kStep = 1e-3;
        const double gain = (kCircuits[n].plate(kStep) - kCircuits[n].plate(-kStep)) / (2.0 * kStep);
        EXPECT_NEAR(curve.volts(0.0), kCircuits[n].plate(0.0), 0.01) << curve.name;
        EXPECT_NEAR(curve.gainAtRest(), gain, 0.01 * std::abs(gain)) << curve.name;
    }
}

TEST(PreampCurves, RestLiesAroundTheMiddleOfTheSwing) {
    for (const Curve& curve : kPreampCurves) {
        EXPECT_GE(curve.normalised(0.0), -0.5) << curve.name;
        EXPECT_LE(curve.normalised(0.0), 0.2) << curve.name;
    }
}

TEST(PreampCurves, InvertAndAmplifyFiftyToSeventyTimes) {
    for (const Curve& curve : kPreampCurves) {
        EXPECT_LE(curve.gainAtRest(), -50.0) << curve.name;
        EXPECT_GE(curve.gainAtRest(), -70.0) << curve.name;
    }
}

TEST(PreampCurves, NormalChannelHasTheGivenBreakpoints) {
    const std::array<float, 7> stage1 = {-0.25F, -0.1F, 0.0F, 0.15F, 0.2F, 0.3F, 0.5F};
    const std::array<float, 7> stage2 = {-0.33F, 0.0F, 0.25F, 0.4F, 0.45F, 0.5F, 0.6F};
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(kPreampCurves[0].table.breakpoints[i], stage1[i]);
        EXPECT_EQ(kPreampCurves[1].table.breakpoints[i], stage2[i]);
    }
}

TEST(PreampCurves, SecondHarmonicLeadsTheThirdBelowATenthOfAVolt) {
    for (const Curve& curve : kPreampCurves)
        for (double amplitude : {0.003, 0.01, 0.03, 0.06, 0.1})
            EXPECT_GT(harmonic(curve, amplitude, 2), harmonic(curve, amplitude, 3))
                << curve.name << " at " << amplitude << " V";
}

}  // namespace
