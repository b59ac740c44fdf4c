// How much of its effects the two-channel reverb amp gives over their knobs.
#include <cmath>
#include <gtest/gtest.h>

#include "EffectFeatures.h"
#include "GoldenTable.h"
#include "algorithms/reverb/SpringTankResponse.h"

namespace {

using flagship::measure;

double db(double ratio) {
    return 20.0 * std::log10(ratio);
}

class ArvelReverb65EffectSound : public testing::Test {
protected:
    static void SetUpTestSuite() { SpringTankResponse::setFile(PRODUCT_HOME "/tank/SpringTank.wav"); }
};

TEST_F(ArvelReverb65EffectSound, TheReverbIsThatOfTheGoldenTable) {
    const auto rows = readGolden("arvel_reverb65_reverb.csv", 2);
    EXPECT_EQ(rows.size(), flagship::reverbCases().size());
    for (const flagship::ReverbCase& c : flagship::reverbCases()) {
        const std::string name = nameOf(c);
        ASSERT_TRUE(rows.contains(name)) << name;
        const std::vector<double>& golden = rows.at(name);
        ASSERT_EQ(golden.size(), 3u) << name;
        const flagship::ReverbFeatures f = measure(c);
        EXPECT_NEAR(db(f.early / golden[0]), 0.0, 0.2) << name;
        EXPECT_NEAR(db(f.middle / golden[1]), 0.0, 0.2) << name;
        EXPECT_NEAR(db(f.late / golden[2]), 0.0, 0.2) << name;
    }
}

TEST_F(ArvelReverb65EffectSound, TheVibratoIsThatOfTheGoldenTable) {
    const auto rows = readGolden("arvel_reverb65_vibrato.csv", 2);
    EXPECT_EQ(rows.size(), flagship::vibratoCases().size());
    for (const flagship::VibratoCase& c : flagship::vibratoCases()) {
        const std::string name = nameOf(c);
        ASSERT_TRUE(rows.contains(name)) << name;
        const std::vector<double>& golden = rows.at(name);
        ASSERT_EQ(golden.size(), 3u) << name;
        const flagship::VibratoFeatures f = measure(c);
        EXPECT_NEAR(db(f.most / golden[0]), 0.0, 0.2) << name;
        EXPECT_NEAR(db(f.least / golden[1]), 0.0, 0.2) << name;
        EXPECT_NEAR(f.rateHz, golden[2], 0.01 * golden[2]) << name;
    }
}

// Half travel is 20 % with one taper and 30 % with the other; all of it is all of it with both.
TEST_F(ArvelReverb65EffectSound, TheTailFollowsTheKnobsTaper) {
    const double t20 = measure(flagship::ReverbCase{0.5f, 0}).middle;
    const double t30 = measure(flagship::ReverbCase{0.5f, 1}).middle;
    const double all = measure(flagship::ReverbCase{1.0f, 0}).middle;
    EXPECT_NEAR(t20 / all, 0.2, 0.005);
    EXPECT_NEAR(t30 / all, 0.3, 0.005);
    EXPECT_NEAR(measure(flagship::ReverbCase{1.0f, 1}).middle / all, 1.0, 0.005);
}

TEST_F(ArvelReverb65EffectSound, TheSpeedKnobSpansItsRangeOfRates) {
    EXPECT_NEAR(measure(flagship::VibratoCase{0.0f, 1.0f}).rateHz, 3.22, 0.01);
    EXPECT_NEAR(measure(flagship::VibratoCase{0.5f, 1.0f}).rateHz, 6.56, 0.02);
    EXPECT_NEAR(measure(flagship::VibratoCase{1.0f, 1.0f}).rateHz, 9.9, 0.03);
}

// The cell only takes away: between its flashes the tone is as loud as without it.
TEST_F(ArvelReverb65EffectSound, MoreIntensityDeepensTheTroughsAndLeavesTheCrests) {
    const flagship::VibratoFeatures off = measure(flagship::VibratoCase{0.5f, 0.0f});
    double troughBefore = off.least;
    for (const float intensity : {0.3f, 0.6f, 1.0f}) {
        const flagship::VibratoFeatures f = measure(flagship::VibratoCase{0.5f, intensity});
        EXPECT_NEAR(db(f.most / off.most), 0.0, 0.05) << intensity;
        EXPECT_LT(db(f.least / troughBefore), -2.0) << intensity;
        troughBefore = f.least;
    }
}

}  // namespace
