#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "algorithms/amp/BiasShiftAcCouplingCap.h"
#include "support/LogRecorder.h"

namespace {

constexpr float kSampleRate = 132300.0f;
constexpr double kExcursionTau = (1500.0 * 220000.0 / 221500.0 + 9620.0) * 1e-7;  // 1.11 ms
constexpr double kRecoveryTau = (220000.0 + 9620.0) * 1e-7;                       // 22.96 ms

BiasShiftAcCouplingCap makeCap(int length) {
    return {1.0f, length, 1.0f, 1.0f, 1e-7f, 9620.0f, 1500.0f, 220000.0f, 50.0f, kSampleRate};
}

TEST(BiasShiftAcCouplingCap, NamesItsTimeConstantsInTheLog) {
    const LogRecorder log;
    makeCap(32);
    EXPECT_TRUE(log.has("BiasShiftAcCouplingCap: excursionTau=0.001111, recoveryTau=0.022962"));
}

TEST(BiasShiftAcCouplingCap, BelowGridConductionThereIsNoShift) {
    BiasShiftAcCouplingCap cap = makeCap(1);
    for (const float x : {0.0f, 49.9f, 50.0f, -500.0f})
        EXPECT_EQ(cap.tick(x), 0.0f);
}

// With v = x - state, the charge follows d state/dt = (x - threshold - 2 state) / excursionTau: it ends at
// half of the overdrive, in half of the time constant.
TEST(BiasShiftAcCouplingCap, ASustainedOverdriveChargesThroughTheGrid) {
    BiasShiftAcCouplingCap cap = makeCap(1);
    const double e = std::exp(-1.0 / (kExcursionTau * kSampleRate));
    double expected = 0.0;
    for (int n = 0; n < 2000; ++n) {
        expected = e * expected + (1.0 - e) * (110.0 - expected - 50.0);
        ASSERT_NEAR(cap.tick(110.0f), expected, 1e-3) << n;
    }
    EXPECT_NEAR(expected, 30.0, 1e-3);
}

TEST(BiasShiftAcCouplingCap, AfterABurstTheShiftRecoversInTwentyThreeMilliseconds) {
    constexpr int kTau = static_cast<int>(kRecoveryTau * kSampleRate + 0.5);
    BiasShiftAcCouplingCap cap = makeCap(kTau);
    std::vector<float> burst(kTau, 150.0f);
    std::vector<float> shift(kTau);
    cap.process(burst.data(), shift.data());
    const double charged = shift.back();
    EXPECT_NEAR(charged, 50.0, 0.01);
    const std::vector<float> silence(kTau, 0.0f);
    cap.process(silence.data(), shift.data());
    EXPECT_NEAR(shift.back() / charged, std::exp(-1.0), 1e-3);
}

TEST(BiasShiftAcCouplingCap, FollowsThePrintedLawOnAnySignal) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> volts(-200.0f, 200.0f);
    BiasShiftAcCouplingCap cap(0.8f, 64, 1.5f, 0.7f, 2e-7f, 9000.0f, 1000.0f, 330000.0f, 30.0f, kSampleRate);
    const double excursionTau = (1000.0 * 330000.0 / 331000.0 + 9000.0) * 1.5 * 2e-7;
    const double recoveryTau = 339000.0 * 0.7 * 2e-7;
    const double e = std::exp(-1.0 / (excursionTau * kSampleRate));
    const double r = std::exp(-1.0 / (recoveryTau * kSampleRate));
    double state = 0.0;
    for (int block = 0; block < 200; ++block) {
        float x[64];
        float shift[64];
        for (float& v : x)
            v = volts(random);
        cap.process(x, shift);
        for (int n = 0; n < 64; ++n) {
            const double v = double(x[n]) * 0.8 - state;
            state = v > 30.0 ? e * state + (1.0 - e) * (v - 30.0) : r * state;
            ASSERT_NEAR(shift[n], state, 1e-3);
        }
    }
}

}  // namespace
