#include <gtest/gtest.h>

#include "desk/soundcard/Histogram.h"

using tvk::desk::Histogram;
using namespace std::chrono_literals;

TEST(Histogram, QuantilesOfAUniformRampLieAtTheirShareOfIt) {
    Histogram histogram;
    for (int us = 1; us <= 1000; ++us)
        histogram.add(std::chrono::microseconds(us));
    // A value on a bin's lower edge is counted in that bin, so a quantile may lie one bin above it.
    EXPECT_NEAR(histogram.quantileUs(0.5), 500.0, 0.1001);
    EXPECT_NEAR(histogram.quantileUs(0.99), 990.0, 0.1001);
    EXPECT_DOUBLE_EQ(histogram.quantileUs(1.0), 1000.0);
    EXPECT_DOUBLE_EQ(histogram.maxUs(), 1000.0);
    EXPECT_DOUBLE_EQ(histogram.meanUs(), 500.5);
    EXPECT_EQ(histogram.count(), 1000u);
}

TEST(Histogram, EmptyOneAnswersZero) {
    const Histogram histogram;
    EXPECT_EQ(histogram.meanUs(), 0.0);
    EXPECT_EQ(histogram.maxUs(), 0.0);
    EXPECT_EQ(histogram.quantileUs(0.5), 0.0);
}

TEST(Histogram, DurationBeyondTheLastBinKeepsItsMaximum) {
    Histogram histogram;
    histogram.add(1s);
    histogram.add(1us);
    EXPECT_DOUBLE_EQ(histogram.maxUs(), 1e6);
    EXPECT_NEAR(histogram.quantileUs(0.5), 1.0, 0.1001);
    EXPECT_GE(histogram.quantileUs(1.0), 20000.0);
}

TEST(Histogram, ClearForgetsEverything) {
    Histogram histogram;
    histogram.add(5us);
    histogram.clear();
    EXPECT_EQ(histogram.count(), 0u);
    EXPECT_EQ(histogram.quantileUs(1.0), 0.0);
}
