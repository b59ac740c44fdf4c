#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "picture/Spectrum.h"

using tvk::picture::Spectrum;

namespace {

constexpr int kRateHz = 44100;
constexpr double kBinHz = static_cast<double>(kRateHz) / Spectrum::kWindow;

std::vector<float> sine(double hz, double peak, int frames) {
    std::vector<float> samples;
    for (int i = 0; i < frames; ++i)
        samples.push_back(static_cast<float>(peak * std::sin(2.0 * std::numbers::pi * hz * i / kRateHz)));
    return samples;
}

}  // namespace

TEST(Spectrum, SineInTheMiddleOfABinReadsItsLevel) {
    for (const double peak : {1.0, 0.1, 0.001}) {
        const double hz = 200.0 * kBinHz;
        const Spectrum spectrum(sine(hz, peak, 50000), kRateHz);
        EXPECT_NEAR(spectrum.loudestDb(hz - 20.0, hz + 20.0).value(), 20.0 * std::log10(peak), 0.01);
    }
}

TEST(Spectrum, HannWindowKeepsASineOutOfFarBins) {
    const double hz = 200.5 * kBinHz;
    const Spectrum spectrum(sine(hz, 1.0, 50000), kRateHz);
    // Side lobes fall by 18 dB an octave from -31 dB; between two bins the sine itself reads 1.42 dB less.
    EXPECT_NEAR(spectrum.loudestDb(hz - 20.0, hz + 20.0).value(), -1.42, 0.05);
    EXPECT_LT(spectrum.loudestDb(300.0 * kBinHz, 4000.0 * kBinHz).value(), -110.0);
}

TEST(Spectrum, SineOfHalfTheRecordingReadsThreeDbLess) {
    const double hz = 300.0 * kBinHz;
    auto samples = sine(hz, 1.0, 40 * Spectrum::kWindow);
    samples.resize(2 * samples.size(), 0.0f);
    const Spectrum spectrum(samples, kRateHz);
    EXPECT_NEAR(spectrum.loudestDb(hz - 20.0, hz + 20.0).value(), -3.01, 0.1);
}

TEST(Spectrum, SilenceAndAnEmptyRecordingReadTheFloor) {
    EXPECT_EQ(Spectrum(std::vector<float>(9000, 0.0f), kRateHz).loudestDb(40.0, 20000.0), -200.0);
    EXPECT_EQ(Spectrum({}, kRateHz).loudestDb(40.0, 20000.0), -200.0);
}

TEST(Spectrum, BandWithoutABinReadsNothing) {
    const Spectrum spectrum({}, kRateHz);
    EXPECT_FALSE(spectrum.loudestDb(10.1 * kBinHz, 10.9 * kBinHz).has_value());
    EXPECT_TRUE(spectrum.loudestDb(10.0 * kBinHz, 10.9 * kBinHz).has_value());
}
