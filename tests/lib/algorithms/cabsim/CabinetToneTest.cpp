#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <vector>

#include "algorithms/cabsim/CabinetTone.h"
#include "lib/math/Response.h"
#include "support/DirectConvolution.h"

namespace {

constexpr double kRateHz = 44100.0;
constexpr double kQ = 0.7071;
constexpr double kRampSeconds = 0.01;

std::complex<double> ideal(double freqHz, double hpfHz, double lpfHz, double levelDb) {
    return response::highPass(response::prototypeS(freqHz, hpfHz, kRateHz), kQ) *
           response::lowPass(response::prototypeS(freqHz, lpfHz, kRateHz), kQ) *
           std::pow(10.0, levelDb / 20.0);
}

std::vector<float> impulseResponse(CabinetTone& tone) {
    return response::impulse<float>(44100, [&](float* buffer, int n) { tone.process(buffer, n); });
}

void expectResponse(CabinetTone& tone, double hpfHz, double lpfHz, double levelDb) {
    const std::vector<float> heard = impulseResponse(tone);
    for (const double hz : {30.0, 80.0, 200.0, 500.0, 1000.0, 3000.0, 8000.0, 16000.0})
        EXPECT_LT(std::abs(response::transform(heard, hz, kRateHz) - ideal(hz, hpfHz, lpfHz, levelDb)), 2e-4)
            << hz << " Hz with " << hpfHz << " to " << lpfHz;
}

// Two trapezoidal integrators in double precision, designed anew for each sample.
class Reference {
public:
    explicit Reference(bool isHighPass) : isHighPass_(isHighPass) {}
    double process(double x, double freqHz) {
        const double g = std::tan(std::numbers::pi * freqHz / kRateHz);
        const double k = 1.0 / kQ;
        const double v1 = (s1_ + g * (x - s2_)) / (1.0 + g * (g + k));
        const double v2 = s2_ + g * v1;
        s1_ = 2.0 * v1 - s1_;
        s2_ = 2.0 * v2 - s2_;
        return isHighPass_ ? x - k * v1 - v2 : v2;
    }

private:
    bool isHighPass_;
    double s1_ = 0.0;
    double s2_ = 0.0;
};

// A value after n samples of a ramp.
double ramped(double from, double to, int n) {
    return to + (from - to) * std::exp(-n / (kRampSeconds * kRateHz));
}

TEST(CabinetTone, StartsOpen) {
    CabinetTone tone(kRateHz);
    expectResponse(tone, 20.0, 20000.0, 0.0);
}

TEST(CabinetTone, HasTheResponseOfTwoSecondOrderFiltersAndALevel) {
    for (const auto& [hpfHz, lpfHz, levelDb] :
         {std::tuple{20.0f, 1000.0f, 0.0f}, {100.0f, 5000.0f, -12.0f}, {500.0f, 20000.0f, -36.0f}}) {
        CabinetTone tone(kRateHz);
        tone.setHPF(hpfHz, true);
        tone.setLPF(lpfHz, true);
        tone.setOutputLevel(levelDb, true);
        expectResponse(tone, hpfHz, lpfHz, levelDb);
    }
}

TEST(CabinetTone, EveryControlMovesInTenMillisecondsAndEachFilterFollowsItsOwn) {
    CabinetTone tone(kRateHz);
    tone.setHPF(100.0f, true);
    tone.setLPF(8000.0f, true);
    const std::vector<float> in = whiteNoise(4096, 1);
    std::vector<float> out = in;
    Reference lowPass(false);
    Reference highPass(true);
    std::vector<double> truth;
    tone.setHPF(500.0f, false);
    tone.setLPF(1000.0f, false);
    tone.setOutputLevel(-20.0f, false);
    for (int n = 0; n < 4096; n += 32)
        tone.process(out.data() + n, 32);
    for (int n = 0; n < 4096; ++n) {
        const double low = lowPass.process(in[static_cast<std::size_t>(n)], ramped(8000.0, 1000.0, n + 1));
        truth.push_back(highPass.process(low, ramped(100.0, 500.0, n + 1)) * ramped(1.0, 0.1, n + 1));
    }
    for (std::size_t n = 0; n < truth.size(); ++n)
        ASSERT_NEAR(out[n], truth[n], 1e-5) << n;
}

TEST(CabinetTone, FrequenciesMoveOnWithoutACabinetAndNothingIsLeftInTheFilters) {
    CabinetTone tone(kRateHz);
    tone.setHPF(100.0f, true);
    tone.setLPF(8000.0f, true);
    std::vector<float> loud = whiteNoise(512, 2);
    tone.process(loud.data(), 512);
    tone.setHPF(500.0f, false);
    tone.setLPF(1000.0f, false);
    for (int block = 0; block < 44100 / 32; ++block)
        tone.follow(32);
    expectResponse(tone, 500.0, 1000.0, 0.0);
}

TEST(CabinetTone, AMoveThatBeganWithoutACabinetEndsWithOne) {
    CabinetTone split(kRateHz);
    CabinetTone whole(kRateHz);
    for (CabinetTone* const tone : {&split, &whole}) {
        tone->setHPF(100.0f, true);
        tone->setHPF(500.0f, false);
    }
    std::vector<float> silence(64);
    split.follow(64);
    whole.process(silence.data(), 64);
    std::vector<float> a = whiteNoise(640, 3);
    std::vector<float> b = a;
    split.process(a.data(), 640);
    whole.process(b.data(), 640);
    EXPECT_EQ(a, b);
}

TEST(CabinetTone, WhatIsNoFiniteNumberChangesNothing) {
    CabinetTone tone(kRateHz);
    for (const float bad : {std::nanf(""), std::numeric_limits<float>::infinity()}) {
        tone.setHPF(bad, true);
        tone.setLPF(bad, false);
        tone.setOutputLevel(bad, true);
    }
    expectResponse(tone, 20.0, 20000.0, 0.0);
    tone.setHPF(-1.0f, true);
    for (const float sample : impulseResponse(tone))
        ASSERT_LE(std::abs(sample), 1.0f);
}

}  // namespace
