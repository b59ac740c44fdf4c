#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

#include "NodalAnalysis.h"
#include "algorithms/amp/ToneCircuit.h"

namespace {

using Complex = std::complex<double>;
constexpr double kSampleRate = 44100.0;

struct Pots {
    double bass, mid, treble, volume;
};

// The network, part by part, in volts per volt of the valve behind its 38.46 kilohms.
Complex circuit(const Pots& at, Complex s) {
    enum Node { ground, in, trebleTop, slope, bassTop, midTop, trebleWiper, out };
    NodalAnalysis net(7);
    const NodalAnalysis::Complex ls(s.real(), s.imag());
    net.addSource(in, 38460.0L);
    net.addCapacitor(in, trebleTop, 250e-12L, ls);
    net.addResistor(in, slope, 100e3L);
    net.addCapacitor(slope, bassTop, 100e-9L, ls);
    net.addCapacitor(slope, midTop, 47e-9L, ls);
    net.addResistor(trebleTop, trebleWiper, 250e3L * (1.0L - at.treble));
    net.addResistor(trebleWiper, bassTop, 250e3L * at.treble);
    net.addResistor(bassTop, midTop, 250e3L * at.bass);
    net.addResistor(midTop, ground, 10e3L * at.mid);
    net.addResistor(trebleWiper, out, 1e6L * (1.0L - at.volume));
    net.addResistor(out, ground, 1e6L * at.volume);
    net.addResistor(out, ground, 10e6L);
    net.addCapacitor(out, ground, 165e-12L, ls);
    const NodalAnalysis::Complex v = net.voltage(out);
    return {static_cast<double>(v.real()), static_cast<double>(v.imag())};
}

Complex rational(const ToneCircuitPolynomials& p, Complex s) {
    const Complex numerator = s * (p.n1 + s * (p.n2 + s * p.n3));
    const Complex denominator = p.d0 + s * (p.d1 + s * (p.d2 + s * (p.d3 + s * p.d4)));
    return numerator / denominator;
}

void setAll(ToneCircuit& circuit, const Pots& at, bool isInit) {
    circuit.setBass(static_cast<float>(at.bass), isInit);
    circuit.setMid(static_cast<float>(at.mid), isInit);
    circuit.setTreble(static_cast<float>(at.treble), isInit);
    circuit.setVolume(static_cast<float>(at.volume), isInit);
}

std::vector<float> noise(int length, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> volts(-50.0f, 50.0f);
    std::vector<float> x(static_cast<std::size_t>(length));
    for (float& v : x)
        v = volts(random);
    return x;
}

// A polynomial of second degree in treble and volume and of first degree in bass and middle is given by its
// values on this grid, and a quotient of orders 3 and 4 by eight frequencies: equal here is equal everywhere.
TEST(ToneCircuit, PolynomialsAreTheNodalAnalysisOfTheCircuitInEveryCoefficient) {
    for (const double b : {0.001, 0.9})
        for (const double m : {0.002, 0.8})
            for (const double t : {0.001, 0.4, 0.95})
                for (const double v : {0.003, 0.5, 0.9})
                    for (const double hz : {1.0, 7.0, 40.0, 200.0, 900.0, 4e3, 18e3, 90e3, 4e5}) {
                        const Complex s(0.0, 2.0 * std::numbers::pi * hz);
                        const Complex expected = circuit({b, m, t, v}, s);
                        const Complex actual = rational(toneCircuitPolynomials(b, m, t, v), s);
                        ASSERT_LT(std::abs(actual / expected - 1.0), 1e-12)
                            << b << " " << m << " " << t << " " << v << " at " << hz << " Hz";
                    }
}

// The bilinear transform maps the digital frequency w to the analogue one k tan(w / 2), k = 2 fs.
TEST(ToneCircuit, ImpulseResponseIsTheCircuitAtTheWarpedFrequency) {
    std::mt19937 random(65);
    std::uniform_real_distribution<double> position(0.0001, 0.999);
    constexpr int kLength = 1 << 16;
    std::vector<Pots> settings = {{0.5, 0.5, 0.5, 0.5},
                                  {0.0001, 0.0001, 0.0001, 0.999},
                                  {0.999, 0.999, 0.999, 0.999},
                                  {0.999, 0.0001, 0.0001, 0.5},
                                  {0.0001, 0.999, 0.999, 0.0001}};
    for (int i = 0; i < 12; ++i)
        settings.push_back({position(random), position(random), position(random), position(random)});
    for (const Pots& at : settings) {
        ToneCircuit filter(kSampleRate);
        setAll(filter, at, true);
        std::vector<float> h(kLength, 0.0f);
        filter.process(h.data(), 64);  // the ramps come to rest while there is no signal
        h[0] = 1.0f;
        filter.process(h.data(), kLength);
        double sum = 0.0;
        for (const float y : h)
            sum += std::abs(y);
        for (const double hz : {20.0, 80.0, 200.0, 500.0, 1000.0, 3000.0, 8000.0, 15000.0, 20000.0}) {
            const double w = 2.0 * std::numbers::pi * hz / kSampleRate;
            Complex response = 0.0;
            for (int n = 0; n < kLength; ++n)
                response += static_cast<double>(h[static_cast<std::size_t>(n)]) * std::polar(1.0, -w * n);
            const Complex expected = circuit(at, Complex(0.0, 2.0 * kSampleRate * std::tan(w / 2.0)));
            // Each sample of the response is rounded to a float, and each pot position by its ramp.
            ASSERT_LT(std::abs(response - expected), 2e-7 * sum + 3e-6 * std::abs(expected))
                << at.bass << " " << at.mid << " " << at.treble << " " << at.volume << " at " << hz << " Hz";
        }
    }
}

// The recursion as it is written in textbooks, with coefficients of its own for every sample.
class PlainReference {
public:
    double process(double x0, const ToneCircuitPolynomials& s) {
        const double k = 2.0 * kSampleRate;
        const double n1 = s.n1 * k, n2 = s.n2 * k * k, n3 = s.n3 * k * k * k;
        const double d1 = s.d1 * k, d2 = s.d2 * k * k, d3 = s.d3 * k * k * k, d4 = s.d4 * k * k * k * k;
        const double b[5] = {n1 + n2 + n3, 2 * n1 - 2 * n3, -2 * n2, -2 * n1 + 2 * n3, n2 - n1 - n3};
        const double a[5] = {s.d0 + d4 + d1 + d2 + d3, 4 * (s.d0 - d4) + 2 * d1 - 2 * d3,
                             6 * (s.d0 + d4) - 2 * d2, 4 * (s.d0 - d4) - 2 * d1 + 2 * d3,
                             s.d0 + d4 - d1 + d2 - d3};
        double sum = b[0] * x0;
        for (int j = 1; j <= 4; ++j)
            sum += b[j] * x_[j - 1] - a[j] * y_[j - 1];
        for (int j = 3; j > 0; --j) {
            x_[j] = x_[j - 1];
            y_[j] = y_[j - 1];
        }
        x_[0] = x0;
        y_[0] = sum / a[0];
        return y_[0];
    }

private:
    double x_[4] = {};
    double y_[4] = {};
};

TEST(ToneCircuit, MovingKnobsGiveEverySampleItsOwnCoefficients) {
    ToneCircuit filter(kSampleRate);
    PlainReference reference;
    OnePoleRamp ramps[4] = {
        {0.0032f, kSampleRate}, {0.0032f, kSampleRate}, {0.0032f, kSampleRate}, {0.0032f, kSampleRate}};
    for (OnePoleRamp& ramp : ramps)
        ramp.snap(0.5f);
    const Pots goals[3] = {{0.9, 0.1, 0.7, 0.999}, {0.01, 0.8, 0.2, 0.3}, {0.6, 0.0001, 0.999, 0.05}};
    for (int block = 0; block < 60; ++block) {
        const Pots& goal = goals[block / 20];
        if (block % 20 == 0) {
            setAll(filter, goal, false);
            ramps[0].setTarget(static_cast<float>(goal.bass));
            ramps[1].setTarget(static_cast<float>(goal.mid));
            ramps[2].setTarget(static_cast<float>(goal.treble));
            ramps[3].setTarget(static_cast<float>(goal.volume));
        }
        const std::vector<float> x = noise(32, static_cast<unsigned>(block));
        std::vector<float> y = x;
        filter.process(y.data(), 32);
        for (std::size_t n = 0; n < 32; ++n) {
            const double b = ramps[0].tick(), m = ramps[1].tick(), t = ramps[2].tick(), v = ramps[3].tick();
            ASSERT_NEAR(y[n], reference.process(x[n], toneCircuitPolynomials(b, m, t, v)), 1e-5);
        }
    }
}

// A fresh circuit's ramps count as moving in its first run, since they have not ticked yet.
TEST(ToneCircuit, ARampAtRestGivesTheBitsOfOneThatMoves) {
    const Pots at{0.25, 0.75, 0.5, 0.625};
    ToneCircuit moving(kSampleRate);
    setAll(moving, at, true);
    ToneCircuit atRest(kSampleRate);
    setAll(atRest, at, true);
    std::vector<float> silence(320, 0.0f);
    atRest.process(silence.data(), 320);

    std::vector<float> a = noise(32, 7);
    std::vector<float> b = a;
    moving.process(a.data(), 32);
    atRest.process(b.data(), 32);
    EXPECT_EQ(a, b);
}

TEST(ToneCircuit, TheOutputDoesNotDependOnHowTheSignalIsCutIntoBlocks) {
    ToneCircuit whole(kSampleRate);
    ToneCircuit cut(kSampleRate);
    for (ToneCircuit* filter : {&whole, &cut})
        setAll(*filter, {0.9, 0.2, 0.7, 0.8}, false);
    std::vector<float> a = noise(8192, 3);
    std::vector<float> b = a;
    whole.process(a.data(), 8192);
    for (int start = 0, step = 1; start < 8192; start += step, step = step % 47 + 1)
        cut.process(b.data() + start, std::min(step, 8192 - start));
    EXPECT_EQ(a, b);
}

// A knob that jumps from one end to the other while a low note sounds: a step in the wave would reach all
// frequencies alike, a ramp of 3.2 ms keeps to the low ones.
TEST(ToneCircuit, AKnobJumpMakesNoStepInTheWave) {
    ToneCircuit filter(kSampleRate);
    setAll(filter, {0.5, 0.5, 0.5, 0.02}, true);
    double before = 0.0;
    double largest = 0.0;
    double peak = 0.0;
    for (int n = 0; n < 8820; ++n) {
        if (n == 4410 + 110) filter.setVolume(0.999f, false);  // near the top of the note's wave
        float x = static_cast<float>(std::sin(2.0 * std::numbers::pi * 100.0 * n / kSampleRate));
        filter.process(&x, 1);
        if (n > 4000) largest = std::max(largest, std::abs(x - before));
        peak = std::max(peak, std::abs(double(x)));
        before = x;
    }
    // The note's own slope, and the ramp's steepest step: 1 - p of the whole travel.
    const double slope = 2.0 * std::numbers::pi * 100.0 / kSampleRate;
    const double rampStep = 1.0 - std::exp(-1.0 / (0.0032 * kSampleRate));
    EXPECT_GT(peak, 0.05);
    EXPECT_LT(largest, 1.5 * peak * (slope + rampStep));
}

TEST(ToneCircuit, AtConstructionAllPotsStandInTheMiddleWithoutATransient) {
    ToneCircuit fresh(kSampleRate);
    ToneCircuit settled(kSampleRate);
    setAll(settled, {0.5, 0.5, 0.5, 0.5}, true);
    std::vector<float> a = noise(256, 5);
    std::vector<float> b = a;
    fresh.process(a.data(), 256);
    settled.process(b.data(), 256);
    EXPECT_EQ(a, b);
}

// The network is passive: knobs on the move add what its capacitors hold, and a load-time jump, which no ramp
// softens, a transient that passes.
TEST(ToneCircuit, StaysBoundedWhileKnobsMoveAndSettlesAfterTheyJump) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> position(0.0001, 0.999);
    const auto anywhere = [&] {
        return Pots{position(random), position(random), position(random), position(random)};
    };
    ToneCircuit filter(kSampleRate);
    float peak = 0.0f;
    for (int block = 0; block < 4000; ++block) {
        setAll(filter, anywhere(), false);
        std::vector<float> x = noise(32, static_cast<unsigned>(block));
        filter.process(x.data(), 32);
        for (const float y : x)
            peak = std::max(peak, std::abs(y));
    }
    EXPECT_GT(peak, 5.0f);
    EXPECT_LT(peak, 4.0f * 50.0f);  // of a source of 50 V

    for (int jump = 0; jump < 500; ++jump) {
        setAll(filter, anywhere(), true);
        std::vector<float> x = noise(32, static_cast<unsigned>(jump));
        filter.process(x.data(), 32);
        for (const float y : x)
            ASSERT_TRUE(std::isfinite(y));
    }
    std::vector<float> silence(44100, 0.0f);
    filter.process(silence.data(), 44100);
    EXPECT_LT(std::abs(silence.back()), 1e-3f);
}

}  // namespace
