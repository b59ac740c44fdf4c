#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "LfoReference.h"
#include "algorithms/modulation/TwoVoiceModulation.h"
#include "support/LogRecorder.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;

struct Delays {
    std::vector<double> left;
    std::vector<double> right;
};

// A steady slope comes out late by the delay, whatever the interpolation: reads each voice's delay in ms. The
// slope is exact in a float for the length of a test.
Delays delaysOf(TwoVoiceModulation& voices, int blocks) {
    Delays delays;
    for (int b = 0; b < blocks; ++b) {
        std::vector<float> in(kBlock), left(kBlock), right(kBlock);
        for (int n = 0; n < kBlock; ++n)
            in[n] = static_cast<float>(b * kBlock + n) - 65536.0f;
        voices.process(in.data(), in.data(), left.data(), right.data());
        for (int n = 0; n < kBlock; ++n) {
            delays.left.push_back((in[n] - left[n]) / 44.1);
            delays.right.push_back((in[n] - right[n]) / 44.1);
        }
    }
    return delays;
}

// Behind the first 26 ms, which read what was before the slope.
constexpr int kFirst = 1200;

TEST(TwoVoiceModulation, SwingsFrom20To26MillisecondsAQuarterOfACycleApart) {
    TwoVoiceModulation voices(kBlock, kRate);
    voices.setRate(1.0f, true);
    const Delays delays = delaysOf(voices, 2 * 44100 / kBlock);
    const double step = reference::cyclesPerSample(1.0);
    for (size_t n = kFirst; n < delays.left.size(); ++n) {
        const double cycles = static_cast<double>(n + 1) * step;
        ASSERT_NEAR(delays.left[n], 23.0 + 3.0 * reference::parabolicSine(cycles), 2e-4) << n;
        ASSERT_NEAR(delays.right[n], 23.0 + 3.0 * reference::parabolicSine(cycles + 0.25), 2e-4) << n;
    }
    const auto [least, most] = std::minmax_element(delays.left.begin() + kFirst, delays.left.end());
    EXPECT_NEAR(*least, 20.0, 5e-3);
    EXPECT_NEAR(*most, 26.0, 5e-3);
}

TEST(TwoVoiceModulation, RunsAtAQuarterOfAHertzAtTheStart) {
    TwoVoiceModulation voices(kBlock, kRate);
    const Delays delays = delaysOf(voices, 2 * 44100 / kBlock);
    // Half a cycle: from the top at 1 s to the middle again at 2 s.
    EXPECT_NEAR(delays.left[44100], 26.0, 5e-3);
    EXPECT_NEAR(delays.left.back(), 23.0, 1e-2);
}

TEST(TwoVoiceModulation, ScalesItsSwingByTheDepth) {
    TwoVoiceModulation voices(kBlock, kRate);
    voices.setRate(2.0f, true);
    voices.setDepth(0.25f, true);
    const Delays delays = delaysOf(voices, 44100 / kBlock);
    const auto [least, most] = std::minmax_element(delays.right.begin() + kFirst, delays.right.end());
    EXPECT_NEAR(*least, 23.0 - 0.75, 2e-3);
    EXPECT_NEAR(*most, 23.0 + 0.75, 2e-3);
}

TEST(TwoVoiceModulation, AtDepthZeroIsAConstantDelay) {
    for (const float depth : {0.0f, -2.0f}) {
        TwoVoiceModulation voices(kBlock, kRate);
        voices.setDepth(depth, true);
        const Delays delays = delaysOf(voices, 200);
        for (size_t n = kFirst; n < delays.left.size(); ++n) {
            ASSERT_NEAR(delays.left[n], 23.0, 2e-4);
            ASSERT_NEAR(delays.right[n], 23.0, 2e-4);
        }
    }
}

TEST(TwoVoiceModulation, KeepsTheDelayWithoutAJumpWhenRateAndDepthMove) {
    TwoVoiceModulation voices(kBlock, kRate);
    delaysOf(voices, 100);
    voices.setRate(8.0f, false);
    voices.setDepth(0.3f, false);
    voices.reset();
    voices.setDepth(1.0f, false);
    const Delays delays = delaysOf(voices, 300);
    // 8 Hz at 3 ms moves by 3.4 us a sample at most, the 20 ms glide of 2.1 ms by 2.4 us.
    for (size_t n = kFirst + 1; n < delays.left.size(); ++n)
        ASSERT_LT(std::fabs(delays.left[n] - delays.left[n - 1]), 0.008) << n;
}

TEST(TwoVoiceModulation, NeverReadsBeyondItsLines) {
    for (const float rate : {8000.0f, 44100.0f, 48000.0f, 96000.0f}) {
        const LogRecorder log;
        TwoVoiceModulation voices(kBlock, rate);
        voices.setRate(20.0f, true);
        std::vector<float> block(kBlock, 0.5f);
        for (int b = 0; b < 3000; ++b)
            voices.process(block.data(), block.data(), block.data(), block.data());
        EXPECT_TRUE(log.lines().empty()) << rate;
    }
}

TEST(TwoVoiceModulation, IsSilentAndBackAtItsStartAfterReset) {
    TwoVoiceModulation voices(kBlock, kRate);
    const Delays first = delaysOf(voices, 300);
    voices.reset();
    EXPECT_EQ(delaysOf(voices, 300).right, first.right);
}

}  // namespace
