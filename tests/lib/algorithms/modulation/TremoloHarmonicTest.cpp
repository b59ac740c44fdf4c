#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "Gains.h"
#include "LfoReference.h"
#include "algorithms/modulation/ModulationDelay.h"
#include "algorithms/modulation/TremoloHarmonic.h"
#include "support/LogRecorder.h"

namespace {

std::unique_ptr<TremoloHarmonic> makeTremolo(const std::string& mode, float speed, float intensity,
                                             float shape) {
    auto tremolo = std::make_unique<TremoloHarmonic>(kBlock, kRate);
    tremolo->setMode(mode);
    tremolo->setSpeed(speed, true);
    tremolo->setIntensity(intensity, true);
    tremolo->setShape(shape, true);
    return tremolo;
}

struct LowPass {
    explicit LowPass(double hz) : a(std::exp(-2.0 * std::numbers::pi * hz / 44100.0)) {}
    double next(double x) { return y = (1.0 - a) * x + a * y; }
    double a;
    double y = 0.0;
};

// A guitar of two tones, one for each band.
double toneAt(long n) {
    return 0.5 * std::sin(2.0 * std::numbers::pi * 110.0 * static_cast<double>(n) / 44100.0) +
           0.5 * std::sin(2.0 * std::numbers::pi * 1500.0 * static_cast<double>(n) / 44100.0);
}

std::vector<float> runTone(TremoloHarmonic& tremolo, int blocks) {
    std::vector<float> out;
    for (int b = 0; b < blocks; ++b) {
        std::vector<float> left(kBlock), right(kBlock);
        for (int n = 0; n < kBlock; ++n) {
            left[n] = static_cast<float>(toneAt(b * kBlock + n));
            right[n] = -0.5f * left[n];
        }
        tremolo.process(left.data(), right.data(), left.data(), right.data());
        for (int n = 0; n < kBlock; ++n)
            EXPECT_NEAR(right[n], -0.5f * left[n], 1e-6f);
        out.insert(out.end(), left.begin(), left.end());
    }
    return out;
}

TEST(TremoloHarmonic, FollowsItsFormulaIn6G4A) {
    for (const float speed : {1.75f, 4.05f, 8.5f}) {
        const float intensity = 0.78f;
        const float shape = 0.44f;
        const auto tremolo = makeTremolo("6G4A", speed, intensity, shape);
        const std::vector<float> got = runTone(*tremolo, 44100 / kBlock);
        const reference::Composite lfo{speed, 0.5 + 0.3 * shape, 0.5, 1.0 - shape};
        const double d = (speed - 1.75) / 6.75;
        const double a = 1.0 - 0.6 * d;
        const double b = 0.99 - 0.59 * d;
        LowPass input(11.0), low(189.0), high(916.0);
        for (size_t n = 0; n < got.size(); ++n) {
            const double in = toneAt(static_cast<long>(n));
            const double x = in - input.next(in);
            const double s = 0.5 * intensity * lfo.at(static_cast<long>(n) + 1);
            const double lowBand = low.next(x);
            const double highBand = x - high.next(x);
            const double expected = ((0.5 + s * a) * lowBand + (0.5 - s * b) * highBand) * 2.7662;
            ASSERT_NEAR(got[n], expected, 5e-5) << speed << " Hz, sample " << n;
        }
    }
}

TEST(TremoloHarmonic, FollowsItsFormulaIn6G4WithTheHighBandLater) {
    for (const float speed : {1.75f, 4.05f, 8.5f}) {
        const float intensity = 1.0f;
        const float shape = 0.44f;
        const auto tremolo = makeTremolo("6G4", speed, intensity, shape);
        const std::vector<float> got = runTone(*tremolo, 44100 / kBlock);
        const reference::Composite lfo{speed, 0.5 + 0.3 * shape, 0.5, 1.0 - shape};
        const double d = (speed - 1.75) / 6.75;
        const double a = 1.0 - 0.511 * d;
        const double b = 0.55 - 0.11 * d;
        const double later = (0.005 + 0.005 * d) * 44100.0;
        LowPass input(11.0), low(170.0), body(80.0), high(760.0);
        for (size_t n = 0; n < got.size(); ++n) {
            const double in = toneAt(static_cast<long>(n));
            const double x = in - input.next(in);
            const double s = 0.5 * intensity * lfo.at(static_cast<long>(n) + 1);
            // An exact delay; the tremolo's first-order allpass is up to two samples off.
            const double t = n < 500 ? 0.0 : 0.5 * intensity * lfo.at(static_cast<double>(n) + 1.0 - later);
            const double lowBand = low.next(x);
            const double w = x + body.next(x);
            const double highBand = w - high.next(w);
            const double expected = ((0.5 + s * a) * lowBand + (0.5 - t * b) * highBand) * 2.018;
            if (n < 500) continue;
            ASSERT_NEAR(got[n], expected, 2e-3) << speed << " Hz, sample " << n;
        }
    }
}

// At intensity 0 the two bands stand still, and the whole is a linear filter.
TEST(TremoloHarmonic, AtIntensityZeroIsTheSumOfItsBands) {
    struct Row {
        const char* mode;
        double lowHz, highHz, bodyShare, gain;
    };
    for (const Row& row : {Row{"6G4A", 189.0, 916.0, 0.0, 2.7662}, Row{"6G4", 170.0, 760.0, 1.0, 2.018}}) {
        const auto tremolo = makeTremolo(row.mode, 4.0f, 0.0f, 0.5f);
        const int length = 1 << 15;
        std::vector<float> response;
        for (int block = 0; block < length / kBlock; ++block) {
            std::vector<float> left(kBlock, 0.0f), right(kBlock, 0.0f);
            if (block == 0) left[0] = 1.0f;
            tremolo->process(left.data(), right.data(), left.data(), right.data());
            response.insert(response.end(), left.begin(), left.end());
        }
        for (const double hz : {20.0, 80.0, 200.0, 440.0, 900.0, 3000.0, 10000.0}) {
            using Complex = std::complex<double>;
            const Complex z = std::polar(1.0, -2.0 * std::numbers::pi * hz / 44100.0);
            const auto lowPass = [&](double corner) {
                const double p = std::exp(-2.0 * std::numbers::pi * corner / 44100.0);
                return (1.0 - p) / (1.0 - p * z);
            };
            const Complex x = 1.0 - lowPass(11.0);
            const Complex w = x * (1.0 + row.bodyShare * lowPass(80.0));
            const Complex expected =
                0.5 * row.gain * (x * lowPass(row.lowHz) + w * (1.0 - lowPass(row.highHz)));
            Complex got = 0.0;
            Complex power = 1.0;
            for (const float sample : response) {
                got += static_cast<double>(sample) * power;
                power *= z;
            }
            EXPECT_NEAR(std::abs(got - expected), 0.0, 2e-3) << row.mode << ", " << hz << " Hz";
        }
    }
}

TEST(TremoloHarmonic, ClearsTheFiltersOfANewlyChosenPath) {
    const auto tremolo = makeTremolo("6G4A", 4.0f, 1.0f, 0.5f);
    runTone(*tremolo, 100);
    const auto runSilence = [&](int blocks) {
        float loudest = 0.0f;
        for (int b = 0; b < blocks; ++b) {
            std::vector<float> left(kBlock, 0.0f), right(kBlock, 0.0f);
            tremolo->process(left.data(), right.data(), left.data(), right.data());
            for (const float x : left)
                loudest = std::max(loudest, std::fabs(x));
        }
        return loudest;
    };
    tremolo->setMode("6G4");
    runSilence(4000);
    tremolo->setMode("6G4A");
    EXPECT_LT(runSilence(10), 1e-6f);
}

TEST(TremoloHarmonic, LimitsSpeedAndIntensity) {
    EXPECT_EQ(runTone(*makeTremolo("6G4A", 50.0f, 7.0f, 0.5f), 100),
              runTone(*makeTremolo("6G4A", 8.5f, 1.0f, 0.5f), 100));
    EXPECT_EQ(runTone(*makeTremolo("6G4A", 0.0f, -7.0f, 0.5f), 100),
              runTone(*makeTremolo("6G4A", 1.75f, 0.0f, 0.5f), 100));
}

TEST(TremoloHarmonic, TakesAShapeBeyondItsRangeForOneHalfWithAnError) {
    const std::vector<float> expected = runTone(*makeTremolo("6G4A", 4.0f, 1.0f, 0.5f), 100);
    const LogRecorder log;
    EXPECT_EQ(runTone(*makeTremolo("6G4A", 4.0f, 1.0f, 1.01f), 100), expected);
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
}

TEST(TremoloHarmonic, TakesAnUnknownModeFor6G4AWithAnError) {
    const std::vector<float> expected = runTone(*makeTremolo("6G4A", 4.0f, 1.0f, 0.5f), 100);
    const LogRecorder log;
    EXPECT_EQ(runTone(*makeTremolo("6g4", 4.0f, 1.0f, 0.5f), 100), expected);
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
}

TEST(TremoloHarmonic, RestartsOnReset) {
    const auto tremolo = makeTremolo("6G4", 4.0f, 1.0f, 0.5f);
    const std::vector<float> first = runTone(*tremolo, 300);
    runTone(*tremolo, 55);
    tremolo->reset();
    EXPECT_EQ(runTone(*tremolo, 300), first);
}

TEST(ModulationDelay, DelaysASlowSignalToWithinTwoSamples) {
    for (const float delay : {220.5f, 300.0f, 441.0f, 440.99f}) {
        ModulationDelay line(0.05f, kRate, 0.0f);
        for (int n = 0; n < 20000; ++n) {
            const float in = static_cast<float>(n) / 20000.0f;
            float out = 0.0f;
            line.process(&in, delay, &out, 1);
            if (n <= 1000) continue;
            ASSERT_NEAR(n - out * 20000.0f, delay, 2.01f) << delay;
        }
    }
}

TEST(ModulationDelay, DoesNotRingAtAWholeNumberOfSamples) {
    ModulationDelay line(0.05f, kRate, 0.0f);
    std::vector<float> values(1000, 1.0f);
    line.process(values.data(), 441.0f, values.data(), 1000);
    for (size_t n = 480; n < values.size(); ++n)
        ASSERT_NEAR(values[n], 1.0f, 1e-6f) << n;
}

TEST(ModulationDelay, FeedsItsOutputBack) {
    ModulationDelay line(0.05f, kRate, 0.5f);
    std::vector<float> values(40000, 1.0f);
    line.process(values.data(), 300.25f, values.data(), 40000);
    EXPECT_NEAR(values.back(), 2.0f, 1e-4f);
}

}  // namespace
