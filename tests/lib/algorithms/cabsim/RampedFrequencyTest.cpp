#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "algorithms/cabsim/RampedFrequency.h"

namespace {

struct NotingFilter {
    void setFrequency(float hz) { designs.push_back(hz); }
    std::vector<float> designs;
};

constexpr float kRateHz = 44100.0f;
constexpr float kRampSeconds = 0.01f;

class RampedFrequencyTest : public testing::Test {
protected:
    void settleAt(float hz) {
        ramp.setTarget(hz, true);
        ramp.step();
        ASSERT_TRUE(ramp.isAtRest());
        filter.designs.clear();
    }

    NotingFilter filter;
    RampedFrequency<NotingFilter> ramp{kRampSeconds, kRateHz, filter};
};

TEST_F(RampedFrequencyTest, TheFilterIsDesignedOnceASampleWhileTheRampMovesAndNeverAtRest) {
    settleAt(100.0f);
    for (int n = 0; n < 1000; ++n)
        ramp.step();
    EXPECT_EQ(filter.designs.size(), 0u);

    ramp.setTarget(500.0f, false);
    for (int n = 0; n < 441; ++n)
        ramp.step();
    ASSERT_EQ(filter.designs.size(), 441u);
    for (int n : {1, 100, 441}) {
        const double truth = 500.0 - 400.0 * std::exp(-n / (double(kRampSeconds) * kRateHz));
        EXPECT_NEAR(filter.designs[static_cast<std::size_t>(n - 1)], truth, 0.05) << n;
    }

    // A hundred time constants later it has long come to rest.
    for (int n = 0; n < 44100; ++n)
        ramp.step();
    EXPECT_TRUE(ramp.isAtRest());
    EXPECT_NEAR(filter.designs.back(), 500.0f, 0.05f);
    const std::size_t designsOfTheMove = filter.designs.size();
    EXPECT_LT(designsOfTheMove, 44100u);
    for (int n = 0; n < 44100; ++n)
        ramp.step();
    EXPECT_EQ(filter.designs.size(), designsOfTheMove);
}

TEST_F(RampedFrequencyTest, SamplesThatNobodyHearsCostOneDesign) {
    settleAt(100.0f);
    ramp.skip(32);
    EXPECT_EQ(filter.designs.size(), 0u);
    ramp.setTarget(500.0f, false);
    ramp.skip(441);
    ASSERT_EQ(filter.designs.size(), 1u);
    EXPECT_NEAR(filter.designs[0], 500.0 - 400.0 * std::exp(-1.0), 0.05);
}

TEST_F(RampedFrequencyTest, WhatIsNoFiniteNumberMovesNothing) {
    settleAt(100.0f);
    ramp.setTarget(std::nanf(""), true);
    ramp.setTarget(std::numeric_limits<float>::infinity(), false);
    EXPECT_EQ(ramp.targetHz(), 100.0f);
    ramp.step();
    EXPECT_EQ(filter.designs.size(), 0u);
}

}  // namespace
