#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "AmpCurves.h"
#include "Circuits.h"
#include "Harmonic.h"

namespace {

// Two triodes of a 12AT7 in parallel, a transformer for their load: volts at its secondary.
struct Driver {
    double supply = 440.0, cathode = 8.5, sourceOhms = 100e3, loadOhms = 68713.3, voltsPerAmpere = 831.0360;

    double current(double grid, double plate) const {
        return 2.0 * circuits::k12AT7.plateCurrent(grid, plate);
    }
    double restCurrent() const { return current(-cathode, supply - cathode); }
    double volts(double input) const {
        const double grid = circuits::Triode::gridBehind(sourceOhms, input - cathode);
        const double rest = restCurrent();
        const double i = circuits::solve(
            [&](double trial) { return trial - current(grid, supply - cathode - loadOhms * (trial - rest)); },
            0.0, rest + (supply - cathode) / loadOhms);
        return (i - rest) * voltsPerAmpere;
    }
};

const circuits::CommonCathode kRecoveryCircuit{207.2241, 100e3, 0.7, 125479.2};

TEST(SpringTankCurves, TheDriverFollowsTheLoadLineThroughItsRestPoint) {
    const Driver driver;
    for (int i = 0; i <= 400; ++i) {
        const double x = -1.0 + i / 200.0;
        const double error =
            kTankDrive.volts(x * kTankDrive.inputRange) - driver.volts(x * kTankDrive.inputRange);
        const bool atGridCurrent = std::abs(x - driver.cathode / kTankDrive.inputRange) < 0.08;
        EXPECT_LE(std::abs(error), (atGridCurrent ? 0.06 : 0.015) * kTankDrive.half()) << x;
    }
}

TEST(SpringTankCurves, TheRecoveryStageFollowsTheLoadLineOfTheTriode) {
    for (int i = 0; i <= 400; ++i) {
        const double x = -1.0 + i / 200.0;
        const double input = x * kTankRecovery.inputRange;
        const double error = kTankRecovery.volts(input) - kRecoveryCircuit.plate(input);
        const bool atGridCurrent = std::abs(input - kRecoveryCircuit.cathodeVolts) < 0.8;
        EXPECT_LE(std::abs(error), (atGridCurrent ? 0.06 : 0.015) * kTankRecovery.half()) << x;
    }
}

TEST(SpringTankCurves, TheDriverHasTheGivenBreakpoints) {
    const std::array<float, 7> given = {-0.7F, -0.45F, 0.0F, 0.25F, 0.4F, 0.46F, 0.5F};
    for (std::size_t i = 0; i < given.size(); ++i)
        EXPECT_EQ(kTankDrive.table.breakpoints[i], given[i]);
}

TEST(SpringTankCurves, RestLiesAroundTheMiddleOfTheSwing) {
    for (const Curve& curve : {kTankDrive, kTankRecovery}) {
        EXPECT_GE(curve.normalised(0.0), -0.5) << curve.name;
        EXPECT_LE(curve.normalised(0.0), 0.2) << curve.name;
    }
}

TEST(SpringTankCurves, ATransformerLeavesNoRestVoltageAtTheDriver) {
    EXPECT_NEAR(kTankDrive.volts(0.0), 0.0, 1e-4);
}

TEST(SpringTankCurves, TheDriverStepsDownAndTheRecoveryStageAmplifiesFiftyToSeventyTimes) {
    const Driver driver;
    EXPECT_NEAR(kTankDrive.gainAtRest(), (driver.volts(1e-3) - driver.volts(-1e-3)) / 2e-3, 0.005);
    EXPECT_GT(kTankDrive.gainAtRest(), 0.3);
    EXPECT_LT(kTankDrive.gainAtRest(), 0.5);
    EXPECT_LE(kTankRecovery.gainAtRest(), -50.0);
    EXPECT_GE(kTankRecovery.gainAtRest(), -70.0);
}

TEST(SpringTankCurves, SecondHarmonicLeadsTheThirdBelowATenthOfAVolt) {
    for (const Curve& curve : {kTankDrive, kTankRecovery})
        for (double amplitude : {0.003, 0.01, 0.03, 0.06, 0.1})
            EXPECT_GT(harmonic(curve, amplitude, 2), harmonic(curve, amplitude, 3))
                << curve.name << " at " << amplitude << " V";
}

}  // namespace
