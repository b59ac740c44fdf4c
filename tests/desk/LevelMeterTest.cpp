#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "desk/LevelMeter.h"

using tvk::desk::FrameRing;
using tvk::desk::LevelMeter;

TEST(LevelMeter, SquareWaveReadsItsHeightInPeakAndRms) {
    LevelMeter meter;
    std::array<FrameRing::Frame, 1000> frames{};
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames[i] = {i % 2 ? 0.5f : -0.5f, i % 2 ? -0.125f : 0.125f};
    meter.add(frames.data(), 400);
    meter.add(frames.data() + 400, 600);
    EXPECT_EQ(meter.frames(), 1000u);
    EXPECT_DOUBLE_EQ(meter.peak(0), 0.5);
    EXPECT_DOUBLE_EQ(meter.peak(1), 0.125);
    EXPECT_NEAR(meter.rmsDbfs(0), 20.0 * std::log10(0.5), 1e-12);
    EXPECT_NEAR(meter.rmsDbfs(1), 20.0 * std::log10(0.125), 1e-12);
}

TEST(LevelMeter, SilenceReadsTheFloor) {
    LevelMeter meter;
    EXPECT_EQ(meter.rmsDbfs(0), -200.0);
    const FrameRing::Frame silence{0.0f, 0.0f};
    meter.add(&silence, 1);
    EXPECT_EQ(meter.peak(1), 0.0);
    EXPECT_EQ(meter.rmsDbfs(1), -200.0);
}
