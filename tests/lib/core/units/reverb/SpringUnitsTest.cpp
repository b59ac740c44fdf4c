#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "core/System/DspArchive.h"
#include "core/units/reverb/DUBS_ModSpring65.h"
#include "core/units/reverb/DUBS_Moren15Reverb.h"
#include "core/units/reverb/DUBS_Spring65.h"
#include "core/units/reverb/DUBS_Spring65Ostrel.h"
#include "core/units/reverb/DUBS_TarvekSpring63.h"
#include "core/units/reverb/DUBS_TarvekSpring63Ostrel.h"
#include "support/LogRecorder.h"
#include "support/WhiteNoise.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0F;
using Signal = std::vector<float>;

Parameter<float>& parameter(IDspUnit& unit, const char* name) {
    return dynamic_cast<Parameter<float>&>(*unit.getParameter(name));
}

// The corner at a knob's position, by the poles of the range's ends.
double corner(double knob, double low, double high, double fs = kRate) {
    const double turn = 2.0 * std::numbers::pi / fs;
    const double p1 = std::exp(-turn * low), p2 = std::exp(-turn * high);
    return -std::log(p1 + (p2 - p1) * knob) / turn;
}

struct Stereo {
    Signal left, right;
};

Stereo play(DspUnitBypassStereo& unit, Stereo in) {
    for (std::size_t n = 0; n + kBlock <= in.left.size(); n += kBlock)
        unit.process(&in.left[n], &in.right[n], &in.left[n], &in.right[n]);
    return in;
}

TEST(SpringUnits, DefaultsAreThoseOfEachUnit) {
    DUBS_Spring65 spring65("DUBS_Spring65", kBlock, kRate);
    DUBS_Spring65Ostrel ostrel65("DUBS_Spring65Ostrel", kBlock, kRate);
    DUBS_ModSpring65 mod("DUBS_ModSpring65", kBlock, kRate);
    for (IDspUnit* unit : std::initializer_list<IDspUnit*>{&spring65, &ostrel65, &mod}) {
        EXPECT_FLOAT_EQ(parameter(*unit, "wetLvl").get(), 0.5F);
        EXPECT_FLOAT_EQ(parameter(*unit, "decay").get(), 0.54444F);
        EXPECT_FLOAT_EQ(parameter(*unit, "dwell").get(), 0.28889F);
        EXPECT_FLOAT_EQ(parameter(*unit, "diffuse").get(), 1.0F);
        EXPECT_FLOAT_EQ(parameter(*unit, "tone").get(), 0.5F);
    }
    EXPECT_FLOAT_EQ(parameter(mod, "rateHz").get(), 0.1F);
    EXPECT_FLOAT_EQ(parameter(mod, "depth").get(), 0.25F);
    DUBS_TarvekSpring63 spring63("DUBS_TarvekSpring63", kBlock, kRate);
    DUBS_TarvekSpring63Ostrel ostrel63("DUBS_TarvekSpring63Ostrel", kBlock, kRate);
    for (IDspUnit* unit : std::initializer_list<IDspUnit*>{&spring63, &ostrel63})
        for (const char* name : {"level", "decay", "dwell", "diffuse", "tone"})
            EXPECT_FLOAT_EQ(parameter(*unit, name).get(), 0.5F) << name;
    DUBS_Moren15Reverb moren("DUBS_Moren15Reverb", kBlock, kRate);
    EXPECT_FLOAT_EQ(parameter(moren, "drylvl").get(), 0.0F);
    EXPECT_FLOAT_EQ(parameter(moren, "wetlvl").get(), 1.0F);
}

TEST(SpringUnits, EachHasItsVoicing) {
    const LogRecorder log;
    EXPECT_EQ(&DUBS_Spring65("x", kBlock, kRate).tank().voicing(), &rvb::kSpringVoicing65);
    EXPECT_EQ(&DUBS_Spring65Ostrel("x", kBlock, kRate).tank().voicing(), &rvb::kSpringVoicing65);
    EXPECT_EQ(&DUBS_ModSpring65("x", kBlock, kRate).tank().voicing(), &rvb::kSpringVoicing65);
    EXPECT_EQ(&DUBS_TarvekSpring63("x", kBlock, kRate).tank().voicing(), &rvb::kSpringVoicing63);
    EXPECT_EQ(&DUBS_TarvekSpring63Ostrel("x", kBlock, kRate).tank().voicing(),
              &rvb::kSpringVoicing63Ostrel.common);
    EXPECT_EQ(&DUBS_Moren15Reverb("x", kBlock, kRate).tank().voicing(), &rvb::kSpringVoicing65);
}

TEST(SpringUnits, TheLevelIsInDecibelsOfTheKnob) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    auto& level = parameter(unit, "wetLvl");
    for (auto [knob, gain] :
         {std::pair{1.0F, 1.0F}, {0.5F, 0.5F}, {0.01F, 0.01F}, {1e-4F, 1e-3F}, {2.0F, 1.0F}}) {
        level.set(knob);
        EXPECT_NEAR(unit.tank().wetTarget(), gain, 1e-6F) << knob;
    }
}

TEST(SpringUnits, ALevelOfZeroIsMinus60DbAndNotSilence) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    parameter(unit, "wetLvl").set(0.0F);
    EXPECT_FLOAT_EQ(unit.tank().wetTarget(), 1e-3F);
    EXPECT_FLOAT_EQ(parameter(unit, "wetLvl").get(), 1e-5F);
    parameter(unit, "wetLvl").init(0.0F);
    const Signal in = whiteNoise(9600, 1, 0.5F);
    play(unit, {in, in});
    const Stereo tail = play(unit, {Signal(3200, 0.0F), Signal(3200, 0.0F)});
    double loudest = 0.0;
    for (float sample : tail.left)
        loudest = std::fmax(loudest, std::abs(sample));
    EXPECT_GT(loudest, 1e-6);
    EXPECT_LT(loudest, 1e-2);
}

TEST(SpringUnits, DecayInterpolatesPolesBetweenTheVoicingsCorners) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    for (float knob : {0.0F, 0.25F, 0.54444F, 1.0F}) {
        parameter(unit, "decay").set(knob);
        EXPECT_NEAR(unit.tank().combDampingHz(0), corner(knob, 3585.0, 8450.0), 0.5) << knob;
    }
    DUBS_TarvekSpring63 brighter("DUBS_TarvekSpring63", kBlock, kRate);
    for (float knob : {0.0F, 0.5F, 1.0F}) {
        parameter(brighter, "decay").set(knob);
        EXPECT_NEAR(brighter.tank().combDampingHz(7), corner(knob, 17727.0, 22592.0), 3.0) << knob;
    }
}

TEST(SpringUnits, ToneInterpolatesPolesBetweenTheVoicingsCorners) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    DUBS_TarvekSpring63Ostrel darker("DUBS_TarvekSpring63Ostrel", kBlock, kRate);
    for (float knob : {0.0F, 0.5F, 1.0F}) {
        parameter(unit, "tone").set(knob);
        parameter(darker, "tone").set(knob);
        EXPECT_NEAR(unit.tank().toneHz(), corner(knob, 4000.0, 9000.0), 0.5) << knob;
        EXPECT_NEAR(darker.tank().toneHz(), corner(knob, 500.0, 6000.0), 0.5) << knob;
    }
}

TEST(SpringUnits, TheCornersHoldAtOtherRates) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, 96000.0F);
    parameter(unit, "decay").set(0.5F);
    parameter(unit, "tone").set(0.5F);
    EXPECT_NEAR(unit.tank().combDampingHz(0), corner(0.5, 3585.0, 8450.0, 96000.0), 1.0);
    EXPECT_NEAR(unit.tank().toneHz(), corner(0.5, 4000.0, 9000.0, 96000.0), 1.0);
}

TEST(SpringUnits, DwellIsMappedTwice) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    DUBS_TarvekSpring63 unit63("DUBS_TarvekSpring63", kBlock, kRate);
    for (float knob : {0.0F, 0.28889F, 1.0F}) {
        parameter(unit, "dwell").set(knob);
        parameter(unit63, "dwell").set(knob);
        EXPECT_NEAR(unit.tank().inputGain(), (0.707 + 0.243 * (0.707 + 0.243 * knob)) * 0.707, 1e-6);
        EXPECT_NEAR(unit63.tank().inputGain(), (0.1 + 0.85 * (0.1 + 0.85 * knob)) * 0.707, 1e-6);
    }
}

TEST(SpringUnits, DiffuseIsMappedTwiceAndGives0p9465AtItsEnd) {
    DUBS_Spring65 unit("DUBS_Spring65", kBlock, kRate);
    EXPECT_NEAR(unit.tank().combFeedback(0), 0.9465, 1e-6);  // its default is 1
    parameter(unit, "diffuse").set(0.0F);
    EXPECT_NEAR(unit.tank().combFeedback(5), 0.88 + 0.07 * 0.88, 1e-6);
    DUBS_TarvekSpring63 unit63("DUBS_TarvekSpring63", kBlock, kRate);
    parameter(unit63, "diffuse").set(1.0F);
    EXPECT_NEAR(unit63.tank().combFeedback(5), 0.87 + 0.07 * 0.94, 1e-6);
}

TEST(SpringUnits, TheDryLevelIsFixedAtATenthOfADecibel) {
    const float gain = std::pow(10.0F, -0.005F);
    EXPECT_FLOAT_EQ(DUBS_Spring65("x", kBlock, kRate).tank().dryTarget(), gain);
    EXPECT_FLOAT_EQ(DUBS_TarvekSpring63("x", kBlock, kRate).tank().dryTarget(), gain);
    // At once: the first sample has it.
    DUBS_Spring65 unit("x", kBlock, kRate);
    const Stereo out = play(unit, {Signal(32, 1.0F), Signal(32, 1.0F)});
    EXPECT_FLOAT_EQ(out.left[0], gain);
}

TEST(SpringUnits, EveryChangeIsLogged) {
    const LogRecorder log;
    DUBS_TarvekSpring63 unit("DUBS_TarvekSpring63", kBlock, kRate);
    parameter(unit, "level").set(0.25F);
    parameter(unit, "decay").set(0.125F);
    parameter(unit, "dwell").set(0.75F);
    parameter(unit, "diffuse").set(1.0F);
    parameter(unit, "tone").set(0.0F);
    for (const char* line : {"Level set, 0.250000", "Decay set, 0.125000", "Dwell set, 0.750000",
                             "Diffuse set, 1.000000", "Tone set, 0.000000"})
        EXPECT_EQ(log.count(std::string("DUBS_TarvekSpring63: ") + line), 1) << line;
}

TEST(SpringUnits, TheSidesDifferThroughTheirDryPathsAlone) {
    DUBS_TarvekSpring63 unit("DUBS_TarvekSpring63", kBlock, kRate);
    const Stereo in{whiteNoise(9600, 1, 0.5F), whiteNoise(9600, 2, 0.5F)};
    const Stereo out = play(unit, in);
    const float dry = std::pow(10.0F, -0.005F);
    for (std::size_t n = 0; n < in.left.size(); ++n)
        ASSERT_NEAR(out.left[n] - out.right[n], dry * (in.left[n] - in.right[n]), 1e-6) << n;
}

TEST(SpringUnits, ResetSilencesTheTank) {
    DUBS_Spring65 unit("x", kBlock, kRate);
    play(unit, {whiteNoise(9600, 1, 0.5F), whiteNoise(9600, 2, 0.5F)});
    unit.reset();
    const Stereo out = play(unit, {Signal(3200, 0.0F), Signal(3200, 0.0F)});
    EXPECT_EQ(out.left, Signal(3200, 0.0F));
}

TEST(ModSpring65, TheReverbReachesEachSideThroughItsOwnDelayOf20To26Ms) {
    DUBS_ModSpring65 modulated("x", kBlock, kRate);
    DUBS_Spring65 plain("x", kBlock, kRate);
    parameter(modulated, "depth").init(0.0F);
    Stereo impulse{Signal(9600, 0.0F), Signal(9600, 0.0F)};
    impulse.left[0] = impulse.right[0] = 1.0F;
    const Stereo out = play(modulated, impulse), direct = play(plain, impulse);
    // Without depth both delays are 23 ms: 1014.3 samples.
    for (std::size_t n = 2000; n < 9000; ++n) {
        const double delayed = 0.7 * direct.left[n - 1014] + 0.3 * direct.left[n - 1015];
        ASSERT_NEAR(out.left[n], delayed, 1e-5) << n;
        ASSERT_NEAR(out.right[n], delayed, 1e-5) << n;
    }
}

TEST(ModSpring65, DepthAndRateMoveTheSidesApart) {
    DUBS_ModSpring65 unit("x", kBlock, kRate);
    parameter(unit, "depth").init(1.0F);
    parameter(unit, "rateHz").init(4.0F);
    const Signal in = whiteNoise(44096, 3, 0.5F);
    const Stereo out = play(unit, {in, in});
    double difference = 0.0, sum = 0.0;
    for (std::size_t n = 22050; n < in.size(); ++n) {
        difference += std::abs(out.left[n] - out.right[n]);
        sum += std::abs(out.left[n] - std::pow(10.0F, -0.005F) * in[n]);
    }
    EXPECT_GT(difference, 0.3 * sum);
}

TEST(Moren15Reverb, HasItsTwoLevelsAndNothingElse) {
    DUBS_Moren15Reverb unit("x", kBlock, kRate);
    EXPECT_FLOAT_EQ(unit.tank().dryTarget(), 0.001F);
    EXPECT_FLOAT_EQ(unit.tank().wetTarget(), 1.0F);
    parameter(unit, "drylvl").set(0.5F);
    parameter(unit, "wetlvl").set(0.25F);
    EXPECT_FLOAT_EQ(unit.tank().dryTarget(), 0.5F);
    EXPECT_FLOAT_EQ(unit.tank().wetTarget(), 0.25F);
    EXPECT_FLOAT_EQ(unit.tank().inputGain(), 0.707F);
    EXPECT_FLOAT_EQ(unit.tank().combFeedback(0), 0.945F);
}

}  // namespace
