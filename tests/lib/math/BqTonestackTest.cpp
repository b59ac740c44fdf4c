#include <gtest/gtest.h>
#include <thread>

#include "LogCapture.h"
#include "Response.h"
#include "math/BqTonestack.h"

namespace {

using response::Complex;

constexpr double kRate = 44100.0;

// gh, plus the part below f2 and the part below f1 of two one-pole low-passes.
Complex expected(const BqTonestackValues& v, double freqHz) {
    const Complex z1 = std::polar(1.0, -2.0 * std::numbers::pi * freqHz / kRate);
    const auto lowPass = [&](double corner) {
        const double p = std::exp(-2.0 * std::numbers::pi * corner / kRate);
        return (1.0 - p) / (1.0 - p * z1);
    };
    return static_cast<double>(v.gh) + static_cast<double>(v.gm - v.gh) * lowPass(v.f2) +
           static_cast<double>(v.gl - v.gm) * lowPass(v.f1);
}

TEST(BqTonestackTest, IsTwoOnePoleShelvesAtEveryFrequency) {
    for (const BqTonestackValues& values : {BqTonestackValues{2.0f, 0.5f, 1.5f, 120.0f, 2500.0f},
                                            BqTonestackValues{0.1f, 1.0f, 3.0f, 400.0f, 900.0f},
                                            BqTonestackValues{1.0f, 0.0f, 1.0f, 300.0f, 8000.0f}}) {
        BqTonestack stack(values, kRate);
        const auto h = response::impulse<float>(1 << 13, [&](float* b, int n) { stack.process(b, n); });
        for (double f = 10.0; f < 22000.0; f *= 1.2) {
            ASSERT_LE(std::abs(response::transform(h, f, kRate) - expected(values, f)), 1e-3) << f;
        }
    }
}

TEST(BqTonestackTest, DecibelsAreLinearGains) {
    BqTonestack stack(6.0f, -6.0f, 12.0f, 200.0f, 3000.0f, kRate);
    const auto h = response::impulse<float>(1 << 13, [&](float* b, int n) { stack.process(b, n); });
    const auto linear = [](double db) { return static_cast<float>(std::pow(10.0, db / 20.0)); };
    const BqTonestackValues values{linear(6.0), linear(-6.0), linear(12.0), 200.0f, 3000.0f};
    for (const double f : {0.0, 500.0, 22050.0}) {
        EXPECT_LE(std::abs(response::transform(h, f, kRate) - expected(values, f)), 2e-3) << f;
    }
}

// With three equal gains the stack is that gain, whatever its state: it shows the ramp itself.
TEST(BqTonestackTest, GlidesWithATimeConstantOfThreePointTwoMilliseconds) {
    BqTonestack stack({1.0f, 1.0f, 1.0f, 200.0f, 3000.0f}, kRate);
    stack.set({3.0f, 3.0f, 3.0f, 200.0f, 3000.0f}, false);
    std::vector<float> block(1000, 1.0f);
    stack.process(block.data(), 1000);
    for (int n = 0; n < 1000; ++n) {
        const double expectedGain =
            3.0 - 2.0 * std::exp(-2.0 * std::numbers::pi * 49.735916 * (n + 1) / kRate);
        ASSERT_NEAR(block[static_cast<size_t>(n)], expectedGain, 2e-3) << n;
    }
}

TEST(BqTonestackTest, WithTheFlagItIsThereAtOnce) {
    BqTonestack stack({1.0f, 1.0f, 1.0f, 200.0f, 3000.0f}, kRate);
    stack.set({3.0f, 3.0f, 3.0f, 200.0f, 3000.0f}, true);
    std::vector<float> block(100, 1.0f);
    stack.process(block.data(), 100);
    for (const float y : block)
        EXPECT_NEAR(y, 3.0f, 1e-3f);
}

// The reference ticks and designs for every sample, at rest or not.
TEST(BqTonestackTest, RestingRampsChangeNothingToTheBit) {
    const BqTonestackValues from{2.0f, 0.5f, 1.5f, 120.0f, 2500.0f};
    const BqTonestackValues to{0.3f, 1.2f, 0.7f, 300.0f, 4000.0f};
    const float seconds = 0.15915494f / 49.735916f;
    BqTonestack stack(from, kRate);
    OnePoleRamp gl(seconds, kRate), gm(seconds, kRate), gh(seconds, kRate), f1(seconds, kRate),
        f2(seconds, kRate);
    const auto aim = [&](const BqTonestackValues& v, bool snap) {
        const float values[] = {v.gl, v.gm, v.gh, v.f1, v.f2};
        int i = 0;
        for (OnePoleRamp* ramp : {&gl, &gm, &gh, &f1, &f2}) {
            ramp->setTarget(values[i]);
            if (snap) ramp->snap(values[i]);
            ++i;
        }
    };
    aim(from, true);
    for (OnePoleRamp* ramp : {&gl, &gm, &gh, &f1, &f2})
        ramp->tick();

    BiquadState<float> state;
    bool rested = false;
    for (int block = 0; block < 600; ++block) {
        if (block == 200 || block == 400) {
            const BqTonestackValues& next = block == 200 ? to : from;
            stack.set(next, false);
            aim(next, false);
        }
        rested =
            rested || (gl.isAtRest() && gm.isAtRest() && gh.isAtRest() && f1.isAtRest() && f2.isAtRest());
        float buffer[32];
        for (int n = 0; n < 32; ++n)
            buffer[n] = std::sin(0.013f * static_cast<float>(block * 32 + n));
        float reference[32];
        for (int n = 0; n < 32; ++n) {
            reference[n] = buffer[n];
            const float a = gl.tick(), b = gm.tick(), c = gh.tick(), d = f1.tick(), e = f2.tick();
            processBiquad(designBqTonestack({a, b, c, d, e}, kRate), state, &reference[n], 1);
        }
        stack.process(buffer, 32);
        for (int n = 0; n < 32; ++n)
            ASSERT_EQ(buffer[n], reference[n]) << block << ", " << n;
    }
    EXPECT_TRUE(rested) << "the ramps must have come to rest for this to mean anything";
}

TEST(BqTonestackTest, TheFirstSampleAfterAClearHasZeroState) {
    BqTonestack stack({2.0f, 0.5f, 1.5f, 120.0f, 2500.0f}, kRate);
    std::vector<float> block(3000, 1.0f);
    stack.process(block.data(), 3000);
    const float settledAt1 = block.back();
    EXPECT_NEAR(settledAt1, 2.0f, 1e-2f);
    stack.clear();
    std::vector<float> again(3000, 1.0f);
    stack.process(again.data(), 3000);
    BqTonestack fresh({2.0f, 0.5f, 1.5f, 120.0f, 2500.0f}, kRate);
    std::vector<float> first(1, 1.0f);
    fresh.process(first.data(), 1);
    EXPECT_NEAR(again.front(), first.front(), 1e-4f);
    EXPECT_EQ(again.back(), settledAt1);
}

TEST(BqTonestackTest, ClearStopsEachRampWhereItIsAndItGoesOnFromThere) {
    BqTonestack stack({1.0f, 1.0f, 1.0f, 200.0f, 3000.0f}, kRate);
    stack.set({3.0f, 3.0f, 3.0f, 200.0f, 3000.0f}, false);
    std::vector<float> block(100, 1.0f);
    stack.process(block.data(), 100);
    stack.clear();
    std::vector<float> next(1, 1.0f);
    stack.process(next.data(), 1);
    EXPECT_NEAR(next.front(), block.back(), 1e-2f);
    EXPECT_GT(next.front(), block.back());
}

TEST(BqTonestackTest, CornersPastHalfTheRateAreTruncatedByName) {
    LogCapture log;
    tvk::log::enableDebug(true);
    BqTonestack stack({1.0f, 1.0f, 1.0f, 22050.0f, 30000.0f}, kRate);
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{
                  "Warn truncating f1=22050.000000Hz to 21829.500000Hz",
                  "Warn truncating f2=30000.000000Hz to 21829.500000Hz",
                  "BqTonestack: gl gm gh f1 f2 = 1.000000 1.000000 1.000000 21829.500000 21829.500000"}));
    std::vector<float> block(64, 1.0f);
    stack.process(block.data(), 64);
    for (const float y : block)
        EXPECT_NEAR(y, 1.0f, 1e-4f);
}

TEST(BqTonestackTest, ASweepFromAnotherThreadStaysBetweenItsEnds) {
    BqTonestack stack({1.0f, 1.0f, 1.0f, 200.0f, 3000.0f}, kRate);
    std::thread sweep([&] {
        for (int i = 0; i < 5000; ++i) {
            const float gain = i % 2 ? 1.0f : 2.0f;
            stack.set({gain, gain, gain, i % 3 ? 100.0f : 400.0f, 3000.0f}, false);
        }
    });
    float lowest = 100.0f;
    float highest = -100.0f;
    for (int i = 0; i < 500; ++i) {
        float block[32];
        std::fill_n(block, 32, 1.0f);
        stack.process(block, 32);
        lowest = std::min(lowest, *std::min_element(block, block + 32));
        highest = std::max(highest, *std::max_element(block, block + 32));
    }
    sweep.join();
    // The three gains may part for a block while a set runs, by at most their own range.
    EXPECT_GT(lowest, 0.0f);
    EXPECT_LT(highest, 3.0f);
}

}  // namespace
