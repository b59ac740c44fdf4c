#include <cmath>
#include <gtest/gtest.h>

#include "math/BlockRamp.h"

namespace {

constexpr float kRate = 44100.0f;
constexpr int kBlock = 32;

TEST(BlockRamp, ApproachesItsTargetWithItsTimeConstant) {
    BlockRamp ramp(0.02f, kRate, kBlock);
    ramp.setTarget(1.0f);
    double seconds = 0.0;
    for (int block = 0; block < 200; ++block) {
        const BlockRamp::Line line = ramp.next();
        seconds += kBlock / 44100.0;
        ASSERT_NEAR(line.at(kBlock - 1), 1.0 - std::exp(-seconds / 0.02), 2e-5) << block;
    }
}

TEST(BlockRamp, IsContinuousFromBlockToBlock) {
    BlockRamp ramp(0.005f, kRate, kBlock);
    ramp.setTarget(-3.0f);
    float last = 0.0f;
    for (int block = 0; block < 50; ++block) {
        const BlockRamp::Line line = ramp.next();
        ASSERT_NEAR(line.at(0), last + line.step, 1e-6f) << block;
        last = line.at(kBlock - 1);
    }
}

TEST(BlockRamp, SnapsToTheBit) {
    BlockRamp ramp(0.02f, kRate, kBlock);
    ramp.set(0.3f, true);
    for (int block = 0; block < 3; ++block) {
        const BlockRamp::Line line = ramp.next();
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(line.at(n), 0.3f);
    }
    ramp.set(0.7f, false);
    EXPECT_EQ(ramp.current(), 0.3f);
    EXPECT_EQ(ramp.target(), 0.7f);
    ramp.snapToTarget();
    EXPECT_EQ(ramp.nextValue(), 0.7f);
}

}  // namespace
