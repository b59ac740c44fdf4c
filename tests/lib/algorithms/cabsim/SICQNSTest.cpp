#include <cmath>

#include "CabinetFixture.h"
#include "algorithms/cabsim/SICQNS.h"
#include "lib/math/Response.h"

namespace {

using Lines = std::vector<std::string>;
using response::Complex;

class SICQNSTest : public CabinetFixture {
protected:
    double gainDb(SICQNS& curve, double hz) {
        return 20.0 * std::log10(std::abs(response::transform(play(curve, impulse(44096)), hz, kRateHz)));
    }

    const Signal left = whiteNoise(320, 1);
    const Signal right = whiteNoise(320, 2);
};

// The cookbook's shelf with S = slope / 4, from its analogue prototype.
Complex shelf(Complex s, double gainDb, double slope) {
    const double a = std::pow(10.0, gainDb / 40.0);
    const double inverseQ = std::sqrt((a + 1.0 / a) * (4.0 / slope - 1.0) + 2.0);
    const Complex b = std::sqrt(a) * inverseQ * s;
    return a * (a * s * s + b + 1.0) / (s * s + b + a);
}

TEST_F(SICQNSTest, NoneIsFlatAndBothOutputsAreTheMeanOfTheInputs) {
    SICQNS curve(kBlock, kRateHz);
    EXPECT_EQ(curve.sicId(), "None");
    const Stereo out = play(curve, left, right);
    for (std::size_t n = 0; n < left.size(); ++n)
        ASSERT_EQ(out.left[n], (left[n] + right[n]) * 0.5f);
    EXPECT_EQ(out.left, out.right);
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(SICQNSTest, TheFlagshipsSpeakerHasTheCurveOfItsAmplifier) {
    SICQNS curve(kBlock, kRateHz);
    curve.setSICID("Arvel");
    EXPECT_EQ(log.lines(), Lines{"SICQNS: setSICID(Arvel)"});
    const Signal heard = play(curve, impulse(44096));
    const auto bell = [](double hz, double db, double corner, double q) {
        return response::bell(response::prototypeS(hz, corner, kRateHz), q, std::pow(10.0, db / 20.0));
    };
    for (const double hz : {40.0, 74.5, 150.0, 500.0, 850.0, 3000.0, 6000.0, 15000.0}) {
        const Complex ideal = bell(hz, 6.9, 74.5, 1.5) * bell(hz, 0.5, 225.0, 1.75) *
                              bell(hz, -0.9, 500.0, 0.7) * bell(hz, -0.25, 6000.0, 1.0) *
                              shelf(response::prototypeS(hz, 850.0, kRateHz), 7.0, 0.7) *
                              std::pow(10.0, -0.05);
        EXPECT_NEAR(std::abs(response::transform(heard, hz, kRateHz)), std::abs(ideal),
                    2e-3 * std::abs(ideal))
            << hz;
    }
}

TEST_F(SICQNSTest, EverySpeakerResonatesBelowAndRisesToTheTreble) {
    for (const CabinetRow& row : cabinetTable()) {
        SICQNS curve(kBlock, kRateHz);
        curve.setSICID(row.id);
        EXPECT_EQ(curve.sicId(), row.id);
        const double middle = gainDb(curve, 400.0);
        double resonance = -100.0;
        for (double hz = 60.0; hz < 140.0; hz += 10.0)
            resonance = std::max(resonance, gainDb(curve, hz));
        EXPECT_GT(resonance - middle, 3.0) << row.id;
        EXPECT_GT(gainDb(curve, 12000.0) - middle, 3.0) << row.id;
    }
}

TEST_F(SICQNSTest, AnUnknownNameIsAnErrorAndFlat) {
    SICQNS curve(kBlock, kRateHz);
    curve.setSICID("Arvel");
    curve.setSICID("Elsewhere");
    EXPECT_EQ(complaints(), Lines{"Error Invalid SIC string. Double check input string against those in "
                                  "SICQNS::setSICIDList: Elsewhere"});
    EXPECT_EQ(curve.sicId(), "None");
    EXPECT_EQ(play(curve, left), left);
    curve.setSICID("None");
    EXPECT_EQ(complaints().size(), 1u);
}

TEST_F(SICQNSTest, ASpeakerThatTheTableDoesNotHaveCannotBeTheFirst) {
    SICQNS curve(kBlock, kRateHz, "Elsewhere");
    EXPECT_EQ(
        complaints(),
        Lines{"Error Cabinet initialized with string not found in CabSimQNS::setCabSimIDList: Elsewhere"});
    EXPECT_EQ(curve.sicId(), "None");
    const SICQNS known(kBlock, kRateHz, "Lisko");
    EXPECT_EQ(known.sicId(), "Lisko");
}

TEST_F(SICQNSTest, ARowWhoseCurveCannotBeMadeIsToldAndUnknown) {
    CabinetRow rows[] = {cabinetTable()[0], cabinetTable()[1]};
    rows[0].makeCurve = [](int, float) { return std::unique_ptr<SICQNSBase>(); };
    SICQNS curve(kBlock, kRateHz, "None", rows);
    EXPECT_EQ(log.lines(), Lines{"SICQNS: SICQNS: Not All Speakers Initialized"});
    curve.setSICID(rows[1].id);
    EXPECT_EQ(curve.sicId(), rows[1].id);
    curve.setSICID(rows[0].id);
    EXPECT_EQ(curve.sicId(), "None");
}

}  // namespace
