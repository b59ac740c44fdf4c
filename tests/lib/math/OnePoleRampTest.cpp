#include <gtest/gtest.h>
#include <vector>

#include "math/OnePoleRamp.h"

namespace {

constexpr float kRate = 44100.0f;

TEST(OnePoleRampTest, StartsAtZeroAndAtRest) {
    OnePoleRamp ramp(0.01f, kRate);
    EXPECT_EQ(ramp.target(), 0.0f);
    EXPECT_EQ(ramp.current(), 0.0f);
    EXPECT_TRUE(ramp.isAtRest());
    EXPECT_EQ(ramp.tick(), 0.0f);
}

TEST(OnePoleRampTest, CoversItsDistanceByTheTimeConstant) {
    for (const double seconds : {0.001, 0.0032, 0.02, 0.04}) {
        OnePoleRamp ramp(static_cast<float>(seconds), kRate);
        ramp.setTarget(1.0f);
        for (int n = 1; n <= static_cast<int>(5.0 * seconds * kRate); ++n) {
            // After n ticks the distance left is exp(-n / (tc fs)).
            ASSERT_NEAR(ramp.tick(), 1.0 - std::exp(-n / (seconds * kRate)), 3e-4) << n << " of " << seconds;
        }
    }
}

TEST(OnePoleRampTest, ABlockIsItsTicksToTheBit) {
    OnePoleRamp ticked(0.0032f, kRate);
    OnePoleRamp blocked(0.0032f, kRate);
    std::vector<float> block(61);
    for (const float target : {1.0f, 0.3f, -0.7f, 0.0f, 1e-3f}) {
        ticked.setTarget(target);
        blocked.setTarget(target);
        for (int n = 0; n < 40; ++n) {
            blocked.process(block.data(), static_cast<int>(block.size()));
            for (const float value : block)
                ASSERT_EQ(value, ticked.tick());
            ASSERT_EQ(blocked.current(), ticked.current());
            ASSERT_EQ(blocked.isAtRest(), ticked.isAtRest());
        }
    }
}

TEST(OnePoleRampTest, AtRestMeansThatFurtherTicksChangeNothing) {
    OnePoleRamp ramp(0.0032f, kRate);
    ramp.setTarget(0.8f);
    int ticks = 0;
    while (!ramp.isAtRest() && ticks < 100000) {
        ramp.tick();
        ++ticks;
    }
    ASSERT_LT(ticks, 100000);
    EXPECT_GT(ticks, 100);
    // Float steps smaller than half a unit in the last place are lost: it stalls just short of the target.
    EXPECT_NEAR(ramp.current(), 0.8, 1e-4);
    const float rest = ramp.current();
    for (int n = 0; n < 1000; ++n)
        ASSERT_EQ(ramp.tick(), rest);
}

TEST(OnePoleRampTest, ATargetMovesNothingUntilTheNextTick) {
    OnePoleRamp ramp(0.01f, kRate);
    ramp.setTarget(1.0f);
    EXPECT_EQ(ramp.target(), 1.0f);
    EXPECT_EQ(ramp.current(), 0.0f);
    EXPECT_FALSE(ramp.isAtRest());
    EXPECT_GT(ramp.tick(), 0.0f);
}

TEST(OnePoleRampTest, SnapMovesTheStateAndNotTheTarget) {
    OnePoleRamp ramp(0.01f, kRate);
    ramp.snap(1.0f);
    EXPECT_EQ(ramp.target(), 0.0f);
    EXPECT_EQ(ramp.current(), 0.0f) << "the last output is what was last given out";
    EXPECT_FALSE(ramp.isAtRest());
    EXPECT_NEAR(ramp.tick(), std::exp(-1.0 / 441.0), 1e-6) << "from 1 it falls towards its target of 0";
}

TEST(OnePoleRampTest, SnappedToItsTargetItIsThereAtOnce) {
    OnePoleRamp ramp(0.01f, kRate);
    ramp.setTarget(0.6f);
    ramp.snap(0.6f);
    for (int n = 0; n < 1000; ++n)
        ASSERT_NEAR(ramp.tick(), 0.6, 1e-5);
}

}  // namespace
