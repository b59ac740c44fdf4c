// What holds for every stored curve, whatever circuit it comes from.
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "AmpCurves.h"

namespace {

std::vector<Curve> valveCurves() {
    std::vector<Curve> curves(kPreampCurves.begin(), kPreampCurves.end());
    for (const Curve& curve : {kInverterA, kInverterB, kOutputA, kOutputB, kTankDrive, kTankRecovery})
        curves.push_back(curve);
    return curves;
}

std::vector<Curve> allCurves() {
    std::vector<Curve> curves = valveCurves();
    curves.push_back(kSoftClip);
    return curves;
}

TEST(CurveLaws, BreakpointsAscendWithinTheRangeAndOneIsTheRestPoint) {
    for (const Curve& curve : allCurves()) {
        double before = -1.0;
        bool hasRest = false;
        for (float breakpoint : curve.table.breakpoints) {
            EXPECT_GT(static_cast<double>(breakpoint), before) << curve.name;
            before = breakpoint;
            hasRest = hasRest || breakpoint == 0.0F;
        }
        EXPECT_LT(before, 1.0) << curve.name;
        EXPECT_TRUE(hasRest) << curve.name;
    }
}

TEST(CurveLaws, NeighbouringSegmentsMeetInValueAndSlope) {
    for (const Curve& curve : allCurves())
        for (int i = 0; i < 7; ++i) {
            const double knot = curve.table.breakpoints[i];
            EXPECT_NEAR(curve.valueIn(i, knot), curve.valueIn(i + 1, knot), 3e-6)
                << curve.name << " at " << knot;
            EXPECT_NEAR(curve.slopeIn(i, knot), curve.slopeIn(i + 1, knot), 1e-5)
                << curve.name << " at " << knot;
        }
}

TEST(CurveLaws, CurvesNeverTurnBack) {
    constexpr int kSteps = 40000;
    for (const Curve& curve : allCurves()) {
        const double sign = direction(curve);
        double worst = 0.0;
        for (int i = 0; i < kSteps; ++i) {
            const double x0 = -1.0 + 2.0 * i / kSteps, x1 = -1.0 + 2.0 * (i + 1) / kSteps;
            worst = std::fmin(worst, sign * (curve.normalised(x1) - curve.normalised(x0)));
        }
        EXPECT_GE(worst, -3e-6) << curve.name;  // the rounding gap of a knot
    }
}

TEST(CurveLaws, ValveCurvesMeetTheirLimitsWithinAHundredthOfAVolt) {
    for (const Curve& curve : valveCurves()) {
        const bool rises = direction(curve) > 0.0;
        EXPECT_NEAR(curve.volts(curve.inputRange), rises ? curve.outputMax : curve.outputMin, 0.01)
            << curve.name;
        EXPECT_NEAR(curve.volts(-curve.inputRange), rises ? curve.outputMin : curve.outputMax, 0.01)
            << curve.name;
    }
}

TEST(CurveLaws, BothChannelsHaveTheirOwnData) {
    EXPECT_NE(kPreampCurves[0].table.segments[3][2], kPreampCurves[2].table.segments[3][2]);
    EXPECT_NE(kPreampCurves[1].table.segments[3][2], kPreampCurves[3].table.segments[3][2]);
}

}  // namespace
