#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "FlagshipFeatures.h"
#include "GoldenTable.h"

namespace {

using flagship::Case;
using flagship::kKnobs;
using flagship::measure;

const flagship::Knobs* const kPanel5 = &kKnobs[0];

class EachChannel : public testing::TestWithParam<int> {
protected:
    Case at1kHz(double millivolts, const flagship::Knobs* knobs = kPanel5) const {
        return {GetParam(), knobs, flagship::k1kHz, millivolts};
    }
};
INSTANTIATE_TEST_SUITE_P(ArvelReverb65Sound, EachChannel, testing::Values(0, 1),
                         [](const auto& which) { return which.param == 0 ? "Normal" : "Vibrato"; });

TEST_P(EachChannel, TenMillivoltsAreCleanAtOneToTwoVolts) {
    const Harmonics h = measure(at1kHz(10.0));
    EXPECT_LT(h.thd(), 0.02);
    EXPECT_GT(h.amplitude[1], 1.0);
    EXPECT_LT(h.amplitude[1], 2.0);
}

TEST_P(EachChannel, AHundredMillivoltsAreWarmAtTenToTwentyVolts) {
    const Harmonics h = measure(at1kHz(100.0));
    EXPECT_GT(h.thd(), 0.02);
    EXPECT_LT(h.thd(), 0.25);
    EXPECT_GT(h.amplitude[1], 10.0);
    EXPECT_LT(h.amplitude[1], 20.0);
}

TEST_P(EachChannel, ThreeHundredMillivoltsReachTheLimitNearTwentySixVolts) {
    const Harmonics h = measure(at1kHz(300.0));
    EXPECT_NEAR(h.amplitude[1], 26.0, 4.0);
}

// A weak second-order bend: twice the input, four times the second harmonic.
TEST_P(EachChannel, TheSecondHarmonicRisesTwelveDecibelsForSixOfInputWhereClean) {
    for (const double millivolts : {2.0, 4.0, 8.0}) {
        const double soft = measure(at1kHz(millivolts)).amplitude[2];
        const double loud = measure(at1kHz(2.0 * millivolts)).amplitude[2];
        EXPECT_NEAR(20.0 * std::log10(loud / soft), 12.04, 0.6) << millivolts << " mV";
    }
}

TEST_P(EachChannel, TheFundamentalFollowsTheInputWhereClean) {
    const double soft = measure(at1kHz(2.0)).amplitude[1];
    const double loud = measure(at1kHz(4.0)).amplitude[1];
    EXPECT_NEAR(20.0 * std::log10(loud / soft), 6.02, 0.05);
}

// Valve B flat out with A cut off, the rest current taken out, through the last gain: 25.87 V.
TEST_P(EachChannel, ThePowerIsLimitedByTheValves) {
    double before = 0.0;
    for (const double millivolts : {100.0, 300.0, 1000.0, 3000.0}) {
        const Harmonics h = measure(at1kHz(millivolts));
        EXPECT_LT(h.rms, 19.18042 * 1.3489629) << millivolts << " mV";
        EXPECT_GT(h.rms, 0.9 * before) << millivolts << " mV";
        before = h.rms;
    }
}

TEST_P(EachChannel, DistortionGrowsWithTheInput) {
    double before = 0.0;
    for (const double millivolts : {3.0, 10.0, 30.0, 100.0, 1000.0}) {
        const double thd = measure(at1kHz(millivolts)).thd();
        EXPECT_GT(thd, before) << millivolts << " mV";
        before = thd;
    }
}

TEST_P(EachChannel, NoDirectVoltageReachesTheSpeaker) {
    for (const double millivolts : {10.0, 300.0, 3000.0}) {
        const Harmonics h = measure(at1kHz(millivolts));
        EXPECT_LT(h.amplitude[0], 1e-3 * h.amplitude[1]) << millivolts << " mV";
    }
}

// Harmonics past half the high rate fold back. Driven flat out a valve is all but a hard clipper, whose
// odd harmonics fall as 1 / n; folded at three times the rate those are what no filter can take out again.
TEST_P(EachChannel, AliasesOfFiveKilohertzAtFullGainAreUnderThoseOfAHardClipperAtThreeTimesTheRate) {
    constexpr int k5kHz = 465;  // periods in a window; odd, so that no two harmonics fold to one place
    constexpr int kInBand = 4;
    constexpr int kHighest = 128;
    constexpr double kFilterEdgeHz = 13000.0;
    const auto foldsBelowEdge = [](int harmonic, int window) {
        const int place = harmonic * k5kHz % window;
        return std::min(place, window - place) * double(flagship::kSampleRate) / flagship::kWindow <
               kFilterEdgeHz;
    };
    double hardClipper = 0.0;
    for (int n = 15; n < 2000; n += 2)
        if (foldsBelowEdge(n, 3 * flagship::kWindow)) hardClipper += 1.0 / (double(n) * n);

    const flagship::Knobs fullGain{"", 1.0f, 1.0f, 1.0f, 1.0f, false};
    const Harmonics h = measure({GetParam(), &fullGain, k5kHz, 300.0}, false, kHighest);
    double folded = 0.0;
    for (int harmonic = kInBand + 1; harmonic <= kHighest; ++harmonic) {
        const double amplitude = h.amplitude[static_cast<std::size_t>(harmonic)];
        if (foldsBelowEdge(harmonic, flagship::kWindow)) folded += amplitude * amplitude;
    }
    folded /= h.amplitude[1] * h.amplitude[1];
    EXPECT_LT(10.0 * std::log10(folded), 10.0 * std::log10(hardClipper) - 3.0);
}

TEST(ArvelReverb65Sound, IsThatOfTheGoldenTable) {
    const auto rows = readGolden("arvel_reverb65.csv", 4);
    const std::vector<Case> cases = flagship::cases();
    EXPECT_EQ(rows.size(), cases.size());
    for (const Case& c : cases) {
        const std::string name = flagship::nameOf(c);
        ASSERT_TRUE(rows.contains(name)) << name;
        const std::vector<double>& golden = rows.at(name);
        ASSERT_EQ(golden.size(), 6u) << name;
        const Harmonics h = measure(c);
        EXPECT_NEAR(20.0 * std::log10(h.rms / golden[0]), 0.0, 0.1) << name;
        EXPECT_NEAR(100.0 * h.thd(), golden[1], 0.05 * golden[1] + 0.01) << name;
        for (int harmonic = 2; harmonic <= 5; ++harmonic) {
            const double expected = std::pow(10.0, golden[static_cast<std::size_t>(harmonic)] / 20.0);
            const double actual = std::pow(10.0, h.db(harmonic) / 20.0);
            EXPECT_NEAR(actual, expected, 0.06 * expected + 1e-4) << name << " H" << harmonic;
        }
    }
}

}  // namespace
