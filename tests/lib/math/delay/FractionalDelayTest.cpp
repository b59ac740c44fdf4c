#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

#include "math/FractionalDelay.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr const char* kNegative = "Error Attempted to use a delay less than 0 samples";
constexpr const char* kTooLong = "Error Delay out of bounds, increase the size of the delay buffer";

std::shared_ptr<CircularBuffer<float>> ring(int size) {
    return std::make_shared<CircularBuffer<float>>(size);
}

TEST(CircularBuffer, IndexesWrapInBothDirectionsForAnyLength) {
    CircularBuffer<float> buffer(7);
    for (int n = 0; n < 7; ++n)
        buffer[n] = static_cast<float>(n);
    EXPECT_EQ(buffer[-1], 6.0F);
    EXPECT_EQ(buffer[-15], 6.0F);
    EXPECT_EQ(buffer[7], 0.0F);
    EXPECT_EQ(buffer[23], 2.0F);
}

TEST(FractionalDelay, ADelayOfZeroReadsTheSampleJustWritten) {
    for (int kind : {FractionalDelay::kLinear, FractionalDelay::kThirdOrder}) {
        FractionalDelay delay(ring(5), kind);
        for (int n = 1; n <= 20; ++n)
            EXPECT_EQ(delay.process(static_cast<float>(n), 0.0), static_cast<float>(n));
    }
}

TEST(FractionalDelay, WholeDelaysPassThroughTheSamplesInBothKinds) {
    for (int kind : {FractionalDelay::kLinear, FractionalDelay::kThirdOrder}) {
        FractionalDelay delay(ring(11), kind);
        for (int n = 0; n < 40; ++n) {
            delay.write(static_cast<float>(n * n));
            for (int d = 0; d <= std::min(n, 10); ++d)
                EXPECT_EQ(delay.read(d), static_cast<float>((n - d) * (n - d))) << n << " - " << d;
        }
    }
}

TEST(FractionalDelay, LinearLiesOnTheChordBetweenTwoSamples) {
    FractionalDelay delay(ring(8));
    for (float sample : {1.0F, 4.0F, -2.0F, 8.0F})
        delay.write(sample);
    EXPECT_FLOAT_EQ(delay.read(0.25), 8.0F + 0.25F * (-2.0F - 8.0F));
    EXPECT_FLOAT_EQ(delay.read(1.5), 1.0F);
    EXPECT_FLOAT_EQ(delay.read(2.75), 4.0F + 0.75F * (1.0F - 4.0F));
}

TEST(FractionalDelay, ThirdOrderIsExactForCubics) {
    const auto cubic = [](double t) { return 0.02 * t * t * t - 0.3 * t * t + t - 2.0; };
    FractionalDelay delay(ring(16), FractionalDelay::kThirdOrder);
    for (int n = 0; n < 16; ++n)
        delay.write(static_cast<float>(cubic(n)));
    for (double d = 1.0; d <= 14.0; d += 0.0625)
        EXPECT_NEAR(delay.read(d), cubic(15.0 - d), 1e-5) << d;
}

TEST(FractionalDelay, ThirdOrderDelaysASineCloserThanLinear) {
    const auto sine = [](double t) { return std::sin(2.0 * std::numbers::pi * t / 16.0); };
    FractionalDelay linear(ring(64)), cubic(ring(64), FractionalDelay::kThirdOrder);
    double worstLinear = 0.0, worstCubic = 0.0;
    for (int n = 0; n < 200; ++n) {
        linear.write(static_cast<float>(sine(n)));
        cubic.write(static_cast<float>(sine(n)));
        if (n < 64) continue;
        worstLinear = std::fmax(worstLinear, std::abs(linear.read(20.5) - sine(n - 20.5)));
        worstCubic = std::fmax(worstCubic, std::abs(cubic.read(20.5) - sine(n - 20.5)));
    }
    EXPECT_GT(worstLinear, 0.018);  // 1 - cos(pi / 16) at the crests
    EXPECT_LT(worstCubic, 0.0008);
}

TEST(FractionalDelay, ThirdOrderDoesNotReadAcrossTheSeamOfTheRing) {
    FractionalDelay delay(ring(8), FractionalDelay::kThirdOrder);
    for (int n = 0; n < 100; ++n)
        delay.write(static_cast<float>(n));
    for (double d = 0.0; d <= 7.0; d += 0.125)
        EXPECT_NEAR(delay.read(d), 99.0 - d, 1e-4) << d;
}

TEST(FractionalDelay, ADelayOfExactlyTheBuffersSizeIsOutOfBoundsAndReadsTheOldest) {
    const LogRecorder log;
    FractionalDelay delay(ring(4));
    for (int n = 1; n <= 6; ++n)
        delay.write(static_cast<float>(n));
    EXPECT_EQ(delay.read(3.0), 3.0F);
    EXPECT_EQ(log.count(kTooLong), 0);
    EXPECT_EQ(delay.read(4.0), 3.0F);
    EXPECT_EQ(log.count(kTooLong), 1);
}

TEST(FractionalDelay, ABadDelayIsLoggedOnceForEachObjectAndTheReadGoesOn) {
    const LogRecorder log;
    FractionalDelay first(ring(4)), second(ring(4));
    for (int n = 0; n < 5; ++n) {
        EXPECT_EQ(first.process(7.0F, -0.5), 7.0F);
        first.process(7.0F, 1e9);
        first.process(7.0F, std::numeric_limits<double>::quiet_NaN());
    }
    EXPECT_EQ(log.count(kNegative), 1);
    EXPECT_EQ(log.count(kTooLong), 1);
    second.process(1.0F, -1.0);
    EXPECT_EQ(log.count(kNegative), 2);
}

TEST(FractionalDelay, TwoHeadsOnOneBufferReadEachOthersWrites) {
    const auto shared = ring(6);
    FractionalDelay first(shared), second(shared);
    first.write(10.0F);
    first.write(20.0F);  // samples 0 and 1; the other head still stands at 0
    EXPECT_EQ(second.read(5.0), 10.0F);
    EXPECT_EQ(second.read(4.0), 20.0F);
    second.write(30.0F);
    EXPECT_EQ(first.read(1.0), 30.0F);
}

TEST(FractionalDelay, AnUnknownInterpolationIsLoggedOnceAndLinear) {
    const LogRecorder log;
    FractionalDelay delay(ring(8), FractionalDelay::kThirdOrder);
    delay.setInterpolation(7);
    EXPECT_EQ(log.count("Warn Invalid interpolation type, defaulting to linear"), 1);
    EXPECT_EQ(delay.interpolation(), FractionalDelay::kLinear);
    for (float sample : {0.0F, 0.0F, 1.0F, 0.0F, 0.0F})
        delay.write(sample);
    EXPECT_EQ(delay.read(2.5), 0.5F);
}

TEST(FractionalDelay, ReadsAndLogsOnTheAudioThreadWithoutAllocatingOrLocking) {
    FractionalDelay delay(ring(100), FractionalDelay::kThirdOrder);
    RealtimeGuard::Violations violations;
    {
        const tvk::RealtimeThreadScope realtime;
        const RealtimeGuard guard;
        for (int n = 0; n < 200; ++n)
            delay.process(1.0F, n);
        violations = guard.violations();
    }
    EXPECT_EQ(violations, RealtimeGuard::Violations{});
    tvk::log::drainRealtimeRing();
}

}  // namespace
