#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "LfoReference.h"
#include "algorithms/modulation/CompositeLfo.h"

namespace {

constexpr float kRate = 44100.0f;

// Phases come from floats: an error of 1e-6 in one is one of 6e-6 in the sine.
constexpr double kTolerance = 1.5e-5;

TEST(CompositeLfo, FollowsItsFormulaForEveryKnob) {
    for (const float duty : {0.0f, 0.3f, 0.5f, 1.0f}) {
        for (const float dist : {0.0f, 0.5f, 1.0f}) {
            for (const float mix : {0.0f, 0.4f, 1.0f}) {
                for (const bool isTriangle : {false, true}) {
                    CompositeLfo lfo(kRate);
                    lfo.setRate(6.0f);
                    lfo.setDuty(duty);
                    lfo.setDist(dist);
                    lfo.setShapeMix(mix);
                    lfo.setTriangle(isTriangle);
                    const reference::Composite expected{6.0, duty, dist, mix, isTriangle};
                    for (long n = 1; n <= 15000; ++n)
                        ASSERT_NEAR(lfo.tick(), expected.at(n), kTolerance)
                            << duty << ", " << dist << ", " << mix << ", " << isTriangle << ", " << n;
                }
            }
        }
    }
}

TEST(CompositeLfo, StartsItsDutyOscillatorAtNinetyDegrees) {
    CompositeLfo lfo(kRate);
    lfo.setRate(1.0f);
    // Duty oscillator at its top: the main sine starts at -90 + 60 degrees.
    EXPECT_NEAR(lfo.tick(), -0.5, 2e-3);
}

TEST(CompositeLfo, StartsTriangleAndSineAtTheirLowestPoint) {
    for (const bool isTriangle : {false, true}) {
        CompositeLfo lfo(kRate);
        lfo.setRate(1.0f);
        lfo.setShapeMix(1.0f);
        lfo.setTriangle(isTriangle);
        EXPECT_NEAR(lfo.tick(), -1.0, 1e-3);
        std::vector<float> values(22050);
        lfo.tick(values.data(), 22050);
        EXPECT_NEAR(values.back(), 1.0, 1e-3);
    }
}

TEST(CompositeLfo, RunsAtOneHundredHertzAtTheStart) {
    CompositeLfo lfo(kRate);
    const reference::Composite expected{100.0};
    for (long n = 1; n <= 2000; ++n)
        ASSERT_NEAR(lfo.tick(), expected.at(n), kTolerance) << n;
}

TEST(CompositeLfo, LeavesTheDutyOscillatorAloneWhenTheAmplitudeChanges) {
    CompositeLfo lfo(kRate);
    lfo.setRate(6.0f);
    lfo.setShapeMix(0.3f);
    lfo.setAmplitude(0.25f);
    lfo.setOffset(2.0f);
    const reference::Composite expected{6.0, 0.5, 0.5, 0.3};
    for (long n = 1; n <= 15000; ++n)
        ASSERT_NEAR(lfo.tick(), 2.0 + 0.25 * expected.at(n), kTolerance) << n;
}

// The share of a cycle for which the exact sine of the bent phase is up.
double exactDuty(double knob) {
    constexpr int kSteps = 36000;
    constexpr double kDegree = std::numbers::pi / 180.0;
    int up = 0;
    for (int i = 0; i < kSteps; ++i) {
        const double theta = 360.0 * i / kSteps;
        const double bend = 2.0 * knob - 1.0 + std::cos(theta * kDegree);
        up += std::sin((theta - 90.0 + 60.0 * bend) * kDegree) > 0.0;
    }
    return static_cast<double>(up) / kSteps;
}

TEST(CompositeLfo, StaysUpLongerWithMoreDuty) {
    double before = 0.0;
    for (const float duty : {0.0f, 0.1f, 0.3f, 0.5f, 0.7f, 0.9f, 1.0f}) {
        CompositeLfo lfo(kRate);
        lfo.setRate(10.0f);
        lfo.setDuty(duty);
        std::vector<float> values(44100);
        lfo.tick(values.data(), 44100);
        const auto up = std::count_if(values.begin(), values.end(), [](float v) { return v > 0.0f; });
        const double share = static_cast<double>(up) / 44100.0;
        EXPECT_GT(share, before) << duty;
        EXPECT_NEAR(share, exactDuty(duty), 2e-3) << duty;
        before = share;
    }
}

TEST(CompositeLfo, GivesABlockAsItsSingleTicks) {
    CompositeLfo single(kRate);
    CompositeLfo blocks(kRate);
    for (CompositeLfo* lfo : {&single, &blocks}) {
        lfo->setRate(7.0f);
        lfo->setShapeMix(0.5f);
        lfo->setTriangle(true);
    }
    for (const int count : {1, 32, 64, 65, 200}) {
        std::vector<float> got(static_cast<size_t>(count));
        blocks.tick(got.data(), count);
        for (const float value : got)
            ASSERT_NEAR(value, single.tick(), 3e-6f) << count;
    }
}

TEST(CompositeLfo, RestartsOnReset) {
    CompositeLfo lfo(kRate);
    lfo.setRate(7.0f);
    lfo.setDist(0.8f);
    std::vector<float> first(500);
    lfo.tick(first.data(), 500);
    std::vector<float> again(500);
    lfo.tick(again.data(), 345);
    lfo.reset();
    lfo.tick(again.data(), 500);
    EXPECT_EQ(again, first);
}

}  // namespace
