#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "algorithms/amp/ArvelReverb65ImpedanceCurve.h"

namespace {

using Complex = std::complex<double>;
constexpr double kSampleRate = 44100.0;

struct Section {
    double b0, b1, b2, a0, a1, a2;
    Complex at(Complex z) const { return (b0 + b1 / z + b2 / (z * z)) / (a0 + a1 / z + a2 / (z * z)); }
};

// Audio EQ Cookbook.
Section peak(double db, double hz, double q) {
    const double a = std::pow(10.0, db / 40.0);
    const double w = 2.0 * std::numbers::pi * hz / kSampleRate;
    const double alpha = std::sin(w) / (2.0 * q);
    return {1.0 + alpha * a, -2.0 * std::cos(w), 1.0 - alpha * a,
            1.0 + alpha / a, -2.0 * std::cos(w), 1.0 - alpha / a};
}

Section highShelf(double db, double hz, double slope) {
    const double a = std::pow(10.0, db / 40.0);
    const double w = 2.0 * std::numbers::pi * hz / kSampleRate;
    const double c = std::cos(w);
    const double alpha = std::sin(w) / 2.0 * std::sqrt((a + 1.0 / a) * (1.0 / slope - 1.0) + 2.0);
    const double beta = 2.0 * std::sqrt(a) * alpha;
    return {a * ((a + 1) + (a - 1) * c + beta), -2 * a * ((a - 1) + (a + 1) * c),
            a * ((a + 1) + (a - 1) * c - beta), (a + 1) - (a - 1) * c + beta,
            2 * ((a - 1) - (a + 1) * c),        (a + 1) - (a - 1) * c - beta};
}

// Solved from h = x - l' - d b', b = b' + f h, l = l' + f b, where the primes are one sample old.
Complex twoIntegratorHighPass(Complex z, double f, double damping) {
    const Complex b = f / (1.0 - 1.0 / z);
    const Complex l = b * f / (1.0 - 1.0 / z);
    return 1.0 / (1.0 + l / z + damping * b / z);
}

Complex expectedResponse(double hz) {
    const Complex z = std::polar(1.0, 2.0 * std::numbers::pi * hz / kSampleRate);
    return twoIntegratorHighPass(z, 2.0 * std::sin(std::numbers::pi * 20.0 / kSampleRate), 1.0 / 0.71) *
           peak(6.9, 74.5, 1.5).at(z) * peak(0.5, 225.0, 1.75).at(z) * peak(-0.9, 500.0, 0.7).at(z) *
           peak(-0.25, 6000.0, 1.0).at(z) * highShelf(7.0, 850.0, 0.7 / 4.0).at(z) *
           std::pow(10.0, -1.0 / 20.0);
}

TEST(ArvelReverb65ImpedanceCurve, IsTheProductOfItsSections) {
    constexpr int kBlock = 32;
    constexpr int kLength = 44096;
    ArvelReverb65ImpedanceCurve curve(kBlock, kSampleRate);
    std::vector<float> h(kLength, 0.0f);
    h[0] = 1.0f;
    for (int start = 0; start < kLength; start += kBlock)
        curve.process(h.data() + start);
    for (const double hz :
         {10.0, 20.0, 40.0, 74.5, 110.0, 225.0, 500.0, 850.0, 1500.0, 3000.0, 6000.0, 12000.0, 20000.0}) {
        Complex response = 0.0;
        for (int n = 0; n < kLength; ++n)
            response += double(h[static_cast<std::size_t>(n)]) *
                        std::polar(1.0, -2.0 * std::numbers::pi * hz * n / kSampleRate);
        // Coefficients in floats: near 75 Hz they carry three to four digits of the pole's distance from 1.
        EXPECT_LT(std::abs(response / expectedResponse(hz) - 1.0), 3e-3) << hz << " Hz";
    }
}

TEST(ArvelReverb65ImpedanceCurve, SilenceStaysSilence) {
    ArvelReverb65ImpedanceCurve curve(32, kSampleRate);
    float block[32] = {};
    curve.process(block);
    for (const float y : block)
        EXPECT_EQ(y, 0.0f);
}

}  // namespace
