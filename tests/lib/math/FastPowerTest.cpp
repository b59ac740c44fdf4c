#include <cmath>
#include <gtest/gtest.h>

#include "math/FastPower.h"

namespace {

TEST(FastPower, PowersOfTwoAreWithinThreeTenMillionths) {
    for (double x = -64.0; x <= 64.0; x += 0.000917) {
        const float argument = static_cast<float>(x);
        const double exact = std::exp2(static_cast<double>(argument));
        ASSERT_NEAR(fastExp2(argument) / exact, 1.0, 3e-7) << argument;
    }
}

TEST(FastPower, LogarithmsAreWithinThreeMillionthsOfAnOctave) {
    for (double octave = -100.0; octave <= 100.0; octave += 0.00131) {
        const float argument = static_cast<float>(std::exp2(octave));
        // A float of this size is itself only so fine.
        const double rounding = std::fabs(octave) * 6e-8;
        ASSERT_NEAR(fastLog2(argument), std::log2(static_cast<double>(argument)), 3e-6 + rounding)
            << argument;
    }
    EXPECT_EQ(fastLog2(1.0f), 0.0f);
}

}  // namespace
