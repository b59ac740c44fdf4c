#include <cmath>
#include <gtest/gtest.h>

#include "AmpCurves.h"
#include "Circuits.h"

namespace {

constexpr double kRestCurrentVolts = -0.42840672;  // what the amp takes out of the sum of its two halves

const circuits::LongTailedPair kPair{385.0, 82e3, 100e3, 470.0, 22e3, 47e3};
constexpr double kGridVoltsPerInputVolt = 1.6;

const circuits::BeamPentode kValveA{-46.178853, 450.0, 440.0, 1000.0};
const circuits::BeamPentode kValveB{-49.178853, 450.0, 440.0, 1000.0};

TEST(PhaseInverterCurves, AFallsAndBRises) {
    EXPECT_LT(direction(kInverterA), 0.0);
    EXPECT_GT(direction(kInverterB), 0.0);
}

TEST(PhaseInverterCurves, SmallSignalGainsAreMinus33And39WithinAFifth) {
    EXPECT_NEAR(kInverterA.gainAtRest(), -33.0, 0.2 * 33.0);
    EXPECT_NEAR(kInverterB.gainAtRest(), 39.0, 0.2 * 39.0);
}

// The pair's own swing lies within a few per cent of the limits, onto which it is laid.
TEST(PhaseInverterCurves, FollowTheLongTailedPair) {
    const double idle = kPair.idleGrid();
    const auto lowest = kPair.plates(-kInverterA.inputRange * kGridVoltsPerInputVolt, idle);
    const auto highest = kPair.plates(kInverterA.inputRange * kGridVoltsPerInputVolt, idle);
    EXPECT_NEAR((lowest.a - highest.a) / (2.0 * kInverterA.half()), 1.0, 0.05);
    EXPECT_NEAR((highest.b - lowest.b) / (2.0 * kInverterB.half()), 1.0, 0.05);

    constexpr int kPoints = 61;
    for (int i = 0; i < kPoints; ++i) {
        const double volts = kInverterA.inputRange * (-1.0 + 2.0 * i / (kPoints - 1));
        const auto plates = kPair.plates(volts * kGridVoltsPerInputVolt, idle);
        const double a = 2.0 * (plates.a - highest.a) / (lowest.a - highest.a) - 1.0;
        const double b = 2.0 * (plates.b - lowest.b) / (highest.b - lowest.b) - 1.0;
        EXPECT_NEAR(kInverterA.normalised(volts / kInverterA.inputRange), a, 0.015) << volts << " V";
        EXPECT_NEAR(kInverterB.normalised(volts / kInverterB.inputRange), b, 0.015) << volts << " V";
    }
}

TEST(OutputValveCurves, FollowTheQuarterLoadLineOfTheBeamPentode) {
    constexpr int kPoints = 201;
    const auto expect = [](const Curve& curve, const circuits::BeamPentode& valve) {
        const double least = valve.current(-curve.inputRange), most = valve.current(curve.inputRange);
        for (int i = 0; i < kPoints; ++i) {
            const double x = -1.0 + 2.0 * i / (kPoints - 1);
            const double share = (valve.current(x * curve.inputRange) - least) / (most - least);
            EXPECT_NEAR(direction(curve) * curve.normalised(x), 2.0 * share - 1.0, 0.015) << curve.name;
        }
    };
    expect(kOutputA, kValveA);
    expect(kOutputB, kValveB);
}

TEST(OutputValveCurves, AFallsAndBRises) {
    EXPECT_LT(direction(kOutputA), 0.0);
    EXPECT_GT(direction(kOutputB), 0.0);
}

TEST(OutputValveCurves, RestValuesSumToTheRestCurrent) {
    EXPECT_NEAR(kOutputA.volts(0.0) + kOutputB.volts(0.0), kRestCurrentVolts, 1e-5);
    for (const Curve& curve : {kOutputA, kOutputB}) {
        EXPECT_GE(std::abs(curve.volts(0.0)), 1.3) << curve.name;
        EXPECT_LE(std::abs(curve.volts(0.0)), 2.0) << curve.name;
    }
}

TEST(OutputValveCurves, PairHasNoDeadZoneAtTheCrossover) {
    constexpr int kSteps = 2000;
    constexpr double kStepVolts = 2.0 * 50.0 / kSteps;
    const auto pair = [](double volts) { return kOutputA.volts(volts) + kOutputB.volts(-volts); };
    const auto slope = [&](double volts) {
        return (pair(volts - 0.5 * kStepVolts) - pair(volts + 0.5 * kStepVolts)) / kStepVolts;
    };
    double peak = 0.0;
    for (int i = 1; i < kSteps; ++i)
        peak = std::fmax(peak, slope(-50.0 + i * kStepVolts));
    EXPECT_GE(slope(0.0), 0.7 * peak);
}

}  // namespace
