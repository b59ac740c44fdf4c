#include <array>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <utility>
#include <vector>

#include "tables/OversamplingFirs.h"

namespace {

using tables::OversamplingFirPair;

constexpr double kOuterRateHz = 44100.0;

double edgeHz(const OversamplingFirPair& pair) {
    switch (pair.length) {
        case 6:
            return 11000.0;
        case 8:
            return 13000.0;
        case 10:
            return 15000.0;
        default:
            return 16000.0;
    }
}

double magnitude(const float* taps, const OversamplingFirPair& pair, double hz) {
    std::complex<double> sum;
    for (int n = 0; n < pair.rate * pair.length; ++n)
        sum += static_cast<double>(taps[n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * hz * n / (pair.rate * kOuterRateHz));
    return std::abs(sum);
}

// Each sample repeated `rate` times.
double holdMagnitude(const OversamplingFirPair& pair, double hz) {
    std::complex<double> sum;
    for (int n = 0; n < pair.rate; ++n)
        sum += std::polar(1.0 / pair.rate, -2.0 * std::numbers::pi * hz * n / (pair.rate * kOuterRateHz));
    return std::abs(sum);
}

TEST(OversamplingFirs, CoverEveryRateAndLength) {
    const std::array<std::pair<int, int>, tables::kOversamplingFirPairs> expected = {
        {{2, 8}, {2, 12}, {3, 6}, {3, 10}, {4, 6}, {4, 10}, {4, 12}, {5, 6}, {5, 10}}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(tables::kOversamplingFirs[i].rate, expected[i].first);
        EXPECT_EQ(tables::kOversamplingFirs[i].length, expected[i].second);
    }
}

TEST(OversamplingFirs, SumToExactlyOneInSinglePrecision) {
    for (const OversamplingFirPair& pair : tables::kOversamplingFirs)
        for (const float* taps : {pair.up, pair.down}) {
            float forwards = 0.0F, backwards = 0.0F;
            for (int n = 0; n < pair.rate * pair.length; ++n) {
                forwards += taps[n];
                backwards += taps[pair.rate * pair.length - 1 - n];
            }
            EXPECT_EQ(forwards, 1.0F) << pair.rate << ", " << pair.length;
            EXPECT_EQ(backwards, 1.0F) << pair.rate << ", " << pair.length;
        }
}

TEST(OversamplingFirs, AreLinearPhase) {
    for (const OversamplingFirPair& pair : tables::kOversamplingFirs)
        for (int n = 0, last = pair.rate * pair.length - 1; n <= last; ++n) {
            EXPECT_EQ(pair.up[n], pair.up[last - n]) << pair.rate << ", " << pair.length;
            EXPECT_EQ(pair.down[n], pair.down[last - n]) << pair.rate << ", " << pair.length;
        }
}

TEST(OversamplingFirs, HoldUpAndDownTogetherAreFlatInThePassBand) {
    for (const OversamplingFirPair& pair : tables::kOversamplingFirs)
        for (int i = 0; i <= 1000; ++i) {
            const double hz = edgeHz(pair) * i / 1000.0;
            const double gain =
                holdMagnitude(pair, hz) * magnitude(pair.up, pair, hz) * magnitude(pair.down, pair, hz);
            EXPECT_LE(std::abs(20.0 * std::log10(gain)), 0.15)
                << pair.rate << ", " << pair.length << " at " << hz;
        }
}

TEST(OversamplingFirs, EachFilterStopsByAThousandAboveWhatFolds) {
    for (const OversamplingFirPair& pair : tables::kOversamplingFirs)
        for (int i = 0; i <= 2000; ++i) {
            const double begin = kOuterRateHz - edgeHz(pair), end = 0.5 * pair.rate * kOuterRateHz;
            const double hz = begin + (end - begin) * i / 2000.0;
            EXPECT_LE(magnitude(pair.up, pair, hz), 1e-3) << pair.rate << ", " << pair.length << " at " << hz;
            EXPECT_LE(magnitude(pair.down, pair, hz), 1e-3)
                << pair.rate << ", " << pair.length << " at " << hz;
        }
}

std::vector<double> filtered(const std::vector<double>& x, const float* taps, std::size_t length) {
    std::vector<double> y(x.size());
    for (std::size_t n = 0; n < x.size(); ++n)
        for (std::size_t k = 0; k < length && k <= n; ++k)
            y[n] += static_cast<double>(taps[k]) * x[n - k];
    return y;
}

// Through hold, up, down and every third sample from the first on, an impulse comes out symmetric about the
// tenth.
TEST(OversamplingFirs, ThreeTimesTenDelaysByTenSamples) {
    const OversamplingFirPair& pair = tables::kOversamplingFirs[3];
    std::vector<double> held(3 * 41);
    held[0] = held[1] = held[2] = 1.0;
    const std::vector<double> inner = filtered(filtered(held, pair.up, 30), pair.down, 30);
    std::vector<double> out;
    for (std::size_t n = 0; n < inner.size(); n += 3)
        out.push_back(inner[n]);

    double largest = 0.0;
    for (std::size_t n = 0; n < out.size(); ++n)
        largest = std::fmax(largest, n == 10 ? 0.0 : std::abs(out[n]));
    EXPECT_GT(out[10], 2.0 * largest);
    for (std::size_t k = 1; k <= 10; ++k)
        EXPECT_NEAR(out[10 + k], out[10 - k], 1e-12) << k;
}

}  // namespace
