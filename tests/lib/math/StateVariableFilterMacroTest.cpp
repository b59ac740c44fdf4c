#include <gtest/gtest.h>

#include "LogCapture.h"
#include "Response.h"
#include "math/StateVariableFilterMacro.h"

namespace {

using response::Complex;
using Mode = StateVariableFilterMacro::Mode;

constexpr double kRate = 44100.0;

// The transfer functions of the two-integrator chain, from its difference equations:
//   L (1 - z1) = f z1 B,  H = g X - L - d z1 B,  B (1 - z1) = f H
Complex expected(Mode mode, double f, double d, Complex z1) {
    const Complex integrated = f * z1 / (1.0 - z1);
    const Complex band = f * std::sqrt(d) / ((1.0 - z1) + f * d * z1 + f * integrated);
    if (mode == Mode::LowPass) return integrated * band;
    if (mode == Mode::HighPass) return band * (1.0 - z1) / f;
    return band;
}

TEST(StateVariableFilterMacroTest, EveryModeEqualsItsTransferFunction) {
    for (const Mode mode : {Mode::LowPass, Mode::BandPass, Mode::HighPass}) {
        for (const double freqHz : {100.0, 1000.0, 4000.0}) {
            for (const double q : {0.6, 2.0, 8.0}) {
                StateVariableFilterMacro filter(1, 1, mode, kRate, static_cast<float>(freqHz),
                                                static_cast<float>(q));
                const auto h =
                    response::impulse<float>(1 << 15, [&](float* b, int n) { filter.process(0, b, n); });
                const double f = 2.0 * StateVariableFilterMacro::approximateSine(
                                           static_cast<float>(std::numbers::pi * freqHz / kRate));
                for (double hz = 20.0; hz < 22000.0; hz *= 1.3) {
                    const Complex z1 = std::polar(1.0, -2.0 * std::numbers::pi * hz / kRate);
                    const Complex want = expected(mode, f, 1.0 / q, z1);
                    ASSERT_LE(std::abs(response::transform(h, hz, kRate) - want), 2e-3 * std::max(1.0, q))
                        << hz << " Hz, " << freqHz << " Hz, q " << q;
                }
            }
        }
    }
}

TEST(StateVariableFilterMacroTest, OversamplingIsTheFasterFilterWithItsInputHeld) {
    StateVariableFilterMacro oversampled(1, 3, Mode::LowPass, kRate, 3000.0f, 1.0f);
    StateVariableFilterMacro fast(1, 1, Mode::LowPass, 3 * kRate, 3000.0f, 1.0f);
    for (int i = 0; i < 500; ++i) {
        float x = std::sin(0.05f * static_cast<float>(i * i % 997));
        float held[3] = {x, x, x};
        oversampled.process(0, &x, 1);
        fast.process(0, held, 3);
        ASSERT_NEAR(x, held[2], 1e-5f) << i;
    }
}

TEST(StateVariableFilterMacroTest, TheSineIsWithinAThousandthOverEveryTurn) {
    for (double x = -20.0; x < 20.0; x += 0.01) {
        ASSERT_NEAR(StateVariableFilterMacro::approximateSine(static_cast<float>(x)), std::sin(x), 1.2e-3)
            << x;
    }
    EXPECT_EQ(StateVariableFilterMacro::approximateSine(0.0f), 0.0f);
}

TEST(StateVariableFilterMacroTest, ChannelsKeepTheirOwnState) {
    StateVariableFilterMacro filter(2, 1, Mode::LowPass, kRate, 1000.0f, 1.0f);
    float first[8] = {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f};
    float second[8] = {};
    filter.process(0, first, 8);
    filter.process(1, second, 8);
    EXPECT_GT(first[7], 0.0f);
    for (const float y : second)
        EXPECT_EQ(y, 0.0f);
    filter.clear();
    float silent[4] = {};
    filter.process(0, silent, 4);
    for (const float y : silent)
        EXPECT_EQ(y, 0.0f);
}

std::vector<float> impulse(StateVariableFilterMacro& filter) {
    filter.clear();
    return response::impulse<float>(64, [&](float* b, int n) { filter.process(0, b, n); });
}

TEST(StateVariableFilterMacroTest, ADampingAboveTwoIsAnErrorAndKeepsTheValuesBefore) {
    StateVariableFilterMacro filter(1, 1, Mode::BandPass, kRate, 1000.0f, 1.0f);
    const std::vector<float> before = impulse(filter);
    LogCapture log;
    filter.setQ(0.49f);
    filter.setAll(5000.0f, 0.1f);
    filter.setQ(0.0f);
    filter.setQ(-1.0f);
    EXPECT_EQ(log.count("Error Q outside of range error."), 4);
    EXPECT_EQ(impulse(filter), before);
    filter.setQ(0.5f);
    EXPECT_EQ(log.lines().size(), 4u) << "a damping of exactly 2 is in range";
}

TEST(StateVariableFilterMacroTest, ABadQAtTheStartLeavesTheCoresAtHalf) {
    LogCapture log;
    StateVariableFilterMacro filter(1, 1, Mode::BandPass, kRate, 1000.0f, 0.2f);
    EXPECT_EQ(log.lines().size(), 1u);
    const std::vector<float> h = impulse(filter);
    EXPECT_NEAR(h[0], 0.5 * std::sqrt(0.5), 1e-6) << "f sqrt(d)";
}

TEST(StateVariableFilterMacroTest, SettersReachWhatTheConstructorDesigns) {
    StateVariableFilterMacro built(1, 2, Mode::HighPass, kRate, 2500.0f, 3.0f);
    StateVariableFilterMacro set(1, 2, Mode::HighPass, kRate, 100.0f, 1.0f);
    set.setFrequency(2500.0f);
    set.setQ(3.0f);
    EXPECT_EQ(impulse(set), impulse(built));
}

}  // namespace
