#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>

#include "SpringReference.h"
#include "algorithms/reverb/SpringBase.h"
#include "algorithms/reverb/SpringBaseOstrel.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "support/WhiteNoise.h"
#include "utility/RealtimeThread.h"

namespace {

using rvb::SpringBase;
using rvb::SpringVoicing;
using Signal = std::vector<float>;

constexpr int kBlock = 32;
constexpr float kRate = 44100.0F;

struct Stereo {
    Signal left, right;
};

Stereo play(SpringBase& tank, const Signal& left, const Signal& right) {
    Stereo out{Signal(left.size()), Signal(left.size())};
    for (std::size_t n = 0; n + kBlock <= left.size(); n += kBlock)
        tank.process(&left[n], &right[n], &out.left[n], &out.right[n], kBlock);
    return out;
}

// The wet signal of an impulse of 1 in both channels.
Signal impulseResponse(SpringBase& tank, std::size_t count) {
    tank.setDryLevelDb(-60.0F, true);
    tank.setWetLevelDb(0.0F, true);
    Signal impulse(count, 0.0F);
    impulse[0] = 1.0F;
    Signal out = play(tank, impulse, impulse).left;
    out[0] -= 0.001F;
    return out;
}

class Voicings : public testing::TestWithParam<const SpringVoicing*> {
protected:
    const SpringVoicing& voicing = *GetParam();
};

INSTANTIATE_TEST_SUITE_P(Both, Voicings, testing::Values(&rvb::kSpringVoicing65, &rvb::kSpringVoicing63),
                         [](const auto& param) { return param.index == 0 ? "Of65" : "Of63"; });

TEST_P(Voicings, FollowTheAlgorithmSampleBySample) {
    for (float rate : {44100.0F, 48000.0F}) {
        SpringBase tank(voicing, kBlock, rate);
        spring_reference::Tank truth(voicing, kBlock, rate);
        const Signal left = whiteNoise(16000, 1, 0.5F), right = whiteNoise(16000, 2, 0.5F);
        const Stereo out = play(tank, left, right);
        for (std::size_t n = 0; n < left.size(); n += kBlock) {
            spring_reference::Block l(&left[n], &left[n] + kBlock), r(&right[n], &right[n] + kBlock);
            truth.process(l, r);
            for (std::size_t i = 0; i < kBlock; ++i) {
                // The dispersion's poles lie within 0.01 of the unit circle and raise float roundings.
                ASSERT_NEAR(out.left[n + i], l[i], 1e-4) << rate << " Hz, sample " << n + i;
                ASSERT_NEAR(out.right[n + i], r[i], 1e-4) << rate << " Hz, sample " << n + i;
            }
        }
    }
}

TEST_P(Voicings, FollowTheAlgorithmWithMovedControls) {
    SpringBase tank(voicing, kBlock, kRate);
    spring_reference::Tank truth(voicing, kBlock, kRate);
    tank.setDwell(0.5F);
    tank.setDiffuse(1.0F);
    tank.setDecayHz(8000.0F);
    tank.setToneHz(5000.0F);
    tank.setWetLevelDb(-6.0F, true);
    tank.setDryLevelDb(-60.0F, true);
    truth.inputGain = (voicing.dwellMin + voicing.dwellMax) / 2.0 * 0.707;
    truth.feedback = voicing.diffuseMax;
    truth.dampingHz = std::clamp(8000.0F, voicing.decayMinHz, voicing.decayMaxHz);
    truth.toneHz = 5000.0;
    truth.wet = std::pow(10.0, -0.3);
    truth.dry = 0.001;
    const Signal in = whiteNoise(16000, 3, 0.5F);
    const Stereo out = play(tank, in, in);
    for (std::size_t n = 0; n < in.size(); n += kBlock) {
        spring_reference::Block l(&in[n], &in[n] + kBlock), r = l;
        truth.process(l, r);
        for (std::size_t i = 0; i < kBlock; ++i)
            ASSERT_NEAR(out.left[n + i], l[i], 1e-4) << n + i;
    }
}

TEST_P(Voicings, SilenceGivesSilenceFromAClearedTank) {
    SpringBase tank(voicing, kBlock, kRate);
    play(tank, whiteNoise(9600, 1, 0.5F), whiteNoise(9600, 2, 0.5F));
    tank.reset();
    const Signal silence(9600, 0.0F);
    const Stereo out = play(tank, silence, silence);
    EXPECT_EQ(out.left, silence);
    EXPECT_EQ(out.right, silence);
}

TEST_P(Voicings, ResetLeavesTheRampsAlone) {
    SpringBase tank(voicing, kBlock, kRate), fresh(voicing, kBlock, kRate);
    tank.setWetLevelDb(-12.0F, true);
    fresh.setWetLevelDb(-12.0F, true);
    play(tank, whiteNoise(9600, 1, 0.5F), whiteNoise(9600, 2, 0.5F));
    play(fresh, Signal(9600, 0.0F), Signal(9600, 0.0F));
    tank.reset();
    const Signal in = whiteNoise(9600, 3, 0.5F);
    const Stereo out = play(tank, in, in), expected = play(fresh, in, in);
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(out.left[n], expected.left[n], 1e-6) << n;
}

TEST_P(Voicings, TheOutputsDifferThroughTheirDryPathsAlone) {
    SpringBase tank(voicing, kBlock, kRate);
    const Signal left = whiteNoise(9600, 1, 0.5F), right = whiteNoise(9600, 2, 0.5F);
    const Stereo out = play(tank, left, right);
    for (std::size_t n = 0; n < left.size(); ++n)
        ASSERT_NEAR(out.left[n] - out.right[n], voicing.outputWeights.first * (left[n] - right[n]), 2e-7)
            << n;
}

TEST_P(Voicings, TheDispersionIsAChainOfAllpasses) {
    for (double hz = 20.0; hz < 22000.0; hz *= 1.3) {
        std::complex<double> chain = 1.0;
        const auto z = std::polar(1.0, -2.0 * std::numbers::pi * hz / 44100.0);
        for (const auto& row : voicing.dispersion)
            chain *= (double{row.b0} + double{row.b1} * z + double{row.b2} * z * z) /
                     (1.0 + double{row.a1} * z + double{row.a2} * z * z);
        EXPECT_NEAR(std::abs(chain), 1.0, 1e-9) << hz;
    }
}

TEST(SpringBase, TheFirstEnergyComesFromTheShortestTapAndTheLinesSlack) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    const Signal out = impulseResponse(tank, 9600);
    std::size_t first = 0;
    while (std::abs(out[first]) < 1e-6F)
        ++first;
    // 1.9501 ms are 85.9994 samples: ceil + 2 behind the input.
    EXPECT_EQ(first, 88U);
    // The loop's delay of 43.401 ms, 1913.984 samples, likewise.
    SpringVoicing loopAlone = rvb::kSpringVoicing65;
    loopAlone.combInputGain = 0.0F;
    loopAlone.earlyWeights.first = 0.0F;
    SpringBase loop(loopAlone, kBlock, kRate);
    const Signal echo = impulseResponse(loop, 9600);
    first = 0;
    while (std::abs(echo[first]) < 1e-6F)
        ++first;
    EXPECT_EQ(first, 1916U);
}

// When the component at hz is largest between two moments; a Gaussian window adds no delay.
double arrivalMs(const Signal& x, double hz, double fromMs, double toMs) {
    const double deviation = 1.5e-3 * 44100.0;
    double best = 0.0, moment = 0.0;
    for (double ms = fromMs; ms < toMs; ms += 0.1) {
        const double centre = ms * 44.1;
        std::complex<double> sum = 0.0;
        for (int i = -260; i <= 260; ++i) {
            const double n = std::round(centre) + i;
            sum += double{x.at(static_cast<std::size_t>(n))} *
                   std::exp(-0.5 * i * i / (deviation * deviation)) *
                   std::polar(1.0, -2.0 * std::numbers::pi * hz * n / 44100.0);
        }
        if (std::abs(sum) > best) best = std::abs(sum), moment = ms;
    }
    return moment;
}

TEST(SpringBase, TheLoopsSecondEchoIsAChirpWith1kHz14MsBehind3500Hz) {
    SpringVoicing voicing = rvb::kSpringVoicing65;
    voicing.combInputGain = 0.0F;
    voicing.earlyWeights.first = 0.0F;
    SpringBase tank(voicing, kBlock, kRate);
    const Signal out = impulseResponse(tank, 9600);
    const double first1k = arrivalMs(out, 1000.0, 35.0, 60.0), first3k5 = arrivalMs(out, 3500.0, 35.0, 60.0);
    EXPECT_NEAR(first1k, first3k5, 1.0);
    const double second1k = arrivalMs(out, 1000.0, 80.0, 130.0),
                 second3k5 = arrivalMs(out, 3500.0, 80.0, 130.0);
    EXPECT_NEAR(second1k - second3k5, 14.0, 1.5);
}

TEST(SpringBase, AtAnyRateTheRowsKeepTheirCoefficientsAndOnlyDelaysFollow) {
    // One turn of the loop at twice the rate is the same sequence of samples after a delay twice as long.
    SpringVoicing voicing = rvb::kSpringVoicing65;
    voicing.combInputGain = 0.0F;
    voicing.earlyWeights.first = 0.0F;
    voicing.inputPeak.gainDb = 0.0F;
    voicing.secondShelf = {0.0F, 0.0F, 1000.0F};
    voicing.loopTapMs = 43.2F;  // a whole number of samples at both rates
    voicing.toneMinHz = 4000.0F;
    SpringBase low(voicing, kBlock, 40000.0F);
    voicing.toneMinHz = 8000.0F;
    SpringBase high(voicing, kBlock, 80000.0F);
    const Signal atLow = impulseResponse(low, 16000), atHigh = impulseResponse(high, 16000);
    for (std::size_t n = 0; n < 1500; ++n)
        ASSERT_NEAR(atLow[1728 + n], atHigh[3456 + n], 1e-5F) << n;
}

TEST(SpringBase, Diffuse1GivesTheUpperEndOfItsRange) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    EXPECT_FLOAT_EQ(tank.combFeedback(0), 0.945F);
    tank.setDiffuse(0.95F);
    for (int comb = 0; comb < 8; ++comb)
        EXPECT_NEAR(tank.combFeedback(comb), 0.9465F, 1e-6F);
}

TEST(SpringBase, AFactorOutside0To1IsAnErrorAndTheRangesLowerEnd) {
    for (float v : {-0.1F, 1.1F, std::numeric_limits<float>::quiet_NaN()}) {
        const LogRecorder log;
        SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
        tank.setDwell(v);
        EXPECT_NEAR(tank.inputGain(), (0.707 + (0.95 - 0.707) * 0.707) * 0.707, 1e-6);
        tank.setDiffuse(v);
        EXPECT_NEAR(tank.combFeedback(3), 0.88 + 0.07 * 0.88, 1e-6);
        EXPECT_EQ(log.startingWith("Error").size(), 2U);
    }
}

TEST(SpringBase, StartsAtTheLowerEndsOfItsRanges) {
    const SpringBase tank(rvb::kSpringVoicing63, kBlock, kRate);
    EXPECT_FLOAT_EQ(tank.inputGain(), 0.1F);
    EXPECT_NEAR(tank.toneHz(), 500.0F, 0.1F);
    EXPECT_NEAR(tank.combDampingHz(0), 3590.0F, 0.1F);
    EXPECT_FLOAT_EQ(tank.dryTarget(), 0.9999F);
    EXPECT_FLOAT_EQ(tank.wetTarget(), 0.99F);
}

TEST(SpringBase, CutoffsAndLevelsAreLimitedToTheVoicingsRanges) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    tank.setDecayHz(100.0F);
    EXPECT_NEAR(tank.combDampingHz(7), 3585.0F, 0.1F);
    tank.setDecayHz(20000.0F);
    EXPECT_NEAR(tank.combDampingHz(0), 8450.0F, 0.1F);
    tank.setToneHz(1.0F);
    EXPECT_NEAR(tank.toneHz(), 4000.0F, 0.1F);
    tank.setToneHz(20000.0F);
    EXPECT_NEAR(tank.toneHz(), 9000.0F, 0.1F);
    tank.setWetLevelDb(-90.0F, true);
    EXPECT_FLOAT_EQ(tank.wetTarget(), 0.001F);
    tank.setWetLevelDb(6.0F, true);
    EXPECT_FLOAT_EQ(tank.wetTarget(), 1.0F);
}

TEST(SpringBase, ALevelRampsByItsOwnLaw) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    tank.setWetLevelDb(-60.0F, true);
    tank.setDryLevelDb(0.0F, true);
    play(tank, Signal(320, 0.0F), Signal(320, 0.0F));
    tank.setDryLevelDb(-20.0F, false);
    // A step of 1 through the dry path; the tank's part is at -60 dB and silent before its first tap.
    const Stereo out = play(tank, Signal(64, 1.0F), Signal(64, 1.0F));
    for (std::size_t n = 0; n < 64; ++n) {
        const double ramp = std::exp(-2.0 * std::numbers::pi * static_cast<double>(n + 1) / (0.02 * 44100.0));
        ASSERT_NEAR(out.left[n], 0.1 + 0.9 * ramp, 2e-5) << n;
        ASSERT_NEAR(out.right[n], 0.1 + 0.9 * ramp, 2e-5) << n;
    }
}

TEST(SpringBase, TheRampsTimeCanBeSet) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    tank.setRampSeconds(0.1F);
    tank.setWetLevelDb(-60.0F, true);
    tank.setDryLevelDb(0.0F, true);
    play(tank, Signal(320, 0.0F), Signal(320, 0.0F));
    tank.setDryLevelDb(-60.0F, false);
    const Stereo out = play(tank, Signal(64, 1.0F), Signal(64, 1.0F));
    const double ramp = std::exp(-2.0 * std::numbers::pi * 64.0 / (0.1 * 44100.0));
    EXPECT_NEAR(out.left[63], 0.001 + 0.999 * ramp, 2e-5);
}

TEST(SpringBase, APeakAtHalfTheRateOrAboveIsTruncatedWithAWarning) {
    const LogRecorder log;
    SpringVoicing voicing = rvb::kSpringVoicing65;
    voicing.inputPeak.frequencyHz = 30000.0F;
    SpringBase tank(voicing, kBlock, kRate);
    EXPECT_EQ(log.startingWith("Warn").size(), 1U);
    const Stereo out = play(tank, whiteNoise(3200, 1, 0.5F), whiteNoise(3200, 2, 0.5F));
    for (float sample : out.left)
        ASSERT_TRUE(std::isfinite(sample));
}

TEST(SpringBase, ATapBeyondItsLineIsAnErrorAndTheTankCarriesOn) {
    const LogRecorder log;
    SpringVoicing voicing = rvb::kSpringVoicing65;
    voicing.earlyTapMs[2] = 50.0F;
    SpringBase tank(voicing, kBlock, kRate);
    EXPECT_EQ(log.count("Error invalid tap size, greater than requested max delay."), 1);
    const Signal out = impulseResponse(tank, 3200);
    for (float sample : out)
        ASSERT_TRUE(std::isfinite(sample));
}

TEST(SpringBase, ItsDampingAndFeedbackDecideItsDecay) {
    const auto energyAfterASecond = [](float decayHz, float diffuse) {
        SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
        tank.setDecayHz(decayHz);
        tank.setDiffuse(diffuse);
        const Signal out = impulseResponse(tank, 44100 * 2);
        double energy = 0.0;
        for (std::size_t n = 44100; n < out.size(); ++n)
            energy += double{out[n]} * out[n];
        return energy;
    };
    EXPECT_GT(energyAfterASecond(8450.0F, 0.9F), 1.2 * energyAfterASecond(3585.0F, 0.9F));
    EXPECT_GT(energyAfterASecond(5000.0F, 1.0F), 1.2 * energyAfterASecond(5000.0F, 0.0F));
}

TEST(SpringBase, ABlockNeitherAllocatesNorLocks) {
    SpringBase tank(rvb::kSpringVoicing65, kBlock, kRate);
    Signal left = whiteNoise(6400, 1, 0.5F), right = whiteNoise(6400, 2, 0.5F);
    const tvk::RealtimeThreadScope realtime;
    const RealtimeGuard guard;
    for (std::size_t n = 0; n < left.size(); n += kBlock)
        tank.process(&left[n], &right[n], &left[n], &right[n], kBlock);
    tank.reset();
    const auto violations = guard.violations();
    EXPECT_EQ(violations, RealtimeGuard::Violations{});
}

TEST(SpringBaseOstrel, IsTheTankOfThe63OnANeutralRecord) {
    rvb::SpringBaseOstrel ostrel(rvb::kSpringVoicing63Ostrel, kBlock, kRate);
    SpringBase plain(rvb::kSpringVoicing63, kBlock, kRate);
    const Signal left = whiteNoise(6400, 1, 0.5F), right = whiteNoise(6400, 2, 0.5F);
    const Stereo out = play(ostrel, left, right), expected = play(plain, left, right);
    EXPECT_EQ(out.left, expected.left);
    EXPECT_EQ(out.right, expected.right);
}

TEST(SpringBaseOstrel, ItsAdditionsScaleInputAndOutputs) {
    rvb::SpringVoicingOstrel voicing = rvb::kSpringVoicing63Ostrel;
    voicing.inputScale = 2.0F;
    voicing.wetTrims[1] = 0.5F;
    voicing.dryTrims[0] = 0.25F;
    rvb::SpringBaseOstrel ostrel(voicing, kBlock, kRate);
    EXPECT_FLOAT_EQ(ostrel.inputGain(), 0.2F);
    ostrel.setDryLevelDb(0.0F, true);
    ostrel.setWetLevelDb(0.0F, true);
    const Signal in = whiteNoise(6400, 1, 0.5F);
    const Stereo out = play(ostrel, in, in);
    for (std::size_t n = 0; n < in.size(); ++n) {
        const double wet = out.left[n] - 0.25 * in[n];
        ASSERT_NEAR(out.right[n], 0.5 * wet + in[n], 1e-6) << n;
    }
}

}  // namespace
