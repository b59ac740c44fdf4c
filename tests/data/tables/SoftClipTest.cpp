#include <gtest/gtest.h>

#include "AmpCurves.h"

namespace {

TEST(SoftClip, IsOdd) {
    for (int i = 0; i <= 1000; ++i)
        EXPECT_NEAR(kSoftClip.normalised(-i / 1000.0), -kSoftClip.normalised(i / 1000.0), 1e-6);
}

TEST(SoftClip, PassesThreeQuartersOfTheRangeUnchanged) {
    for (int i = -749; i <= 750; ++i)  // the lower end itself belongs to the bend
        EXPECT_DOUBLE_EQ(kSoftClip.normalised(i / 1000.0), i / 1000.0);
}

TEST(SoftClip, IsFlatAtItsEnds) {
    EXPECT_NEAR(kSoftClip.slopeIn(0, -1.0), 0.0, 1e-5);
    EXPECT_NEAR(kSoftClip.slopeIn(7, 1.0), 0.0, 1e-5);
}

TEST(SoftClip, NeverAmplifiesAndNeverReachesFullScale) {
    for (int i = 0; i <= 1000; ++i) {
        const double x = i / 1000.0;
        EXPECT_LE(kSoftClip.slopeIn(kSoftClip.segmentOf(x), x), 1.0 + 1e-5) << x;
        EXPECT_LE(kSoftClip.normalised(x), 11.0 / 12.0 + 1e-6) << x;
    }
}

// Where the bend begins, the line and the cubic share the curvature 0.
TEST(SoftClip, BendsWithoutACorner) {
    const float* s = kSoftClip.table.segments[7];
    EXPECT_NEAR(6.0 * s[0] * 0.75 + 2.0 * s[1], 0.0, 1e-5);
}

TEST(SoftClip, HasBreakpointsEveryQuarter) {
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(kSoftClip.table.breakpoints[i], -0.75F + 0.25F * static_cast<float>(i));
}

}  // namespace
