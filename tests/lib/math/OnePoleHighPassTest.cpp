#include <gtest/gtest.h>

#include "Response.h"
#include "math/OnePoleHighPass.h"
#include "utility/RealtimeThread.h"

namespace {

using response::Complex;

TEST(OnePoleHighPassTest, EqualsItsTransferFunctionAtEveryFrequency) {
    for (const double rate : {44100.0, 132300.0}) {
        for (const double corner : {5.0, 80.0, 1000.0}) {
            OnePoleHighPass filter(static_cast<float>(corner), static_cast<float>(rate));
            const int seventeenTimeConstants = static_cast<int>(2.7 * rate / corner);
            const auto h = response::impulse<float>(seventeenTimeConstants,
                                                    [&](float* b, int n) { filter.process(b, n); });
            const double p = std::exp(-2.0 * std::numbers::pi * corner / rate);
            for (double f = 1.0; f < rate / 2; f *= 1.2) {
                const Complex z1 = std::polar(1.0, -2.0 * std::numbers::pi * f / rate);
                const Complex expected = p * (1.0 - z1) / (1.0 - p * z1);
                ASSERT_LE(std::abs(response::transform(h, f, rate) - expected), 2e-4)
                    << f << " of " << corner;
            }
        }
    }
}

TEST(OnePoleHighPassTest, IsTheLeakyIntegratorTakenFromItsInput) {
    const double c = 1.0 - std::exp(-2.0 * std::numbers::pi * 5.0 / 44100.0);
    OnePoleHighPass filter(5.0f, 44100.0f);
    double s = 0.0;
    for (int i = 0; i < 20000; ++i) {
        const float x = std::sin(0.01f * static_cast<float>(i)) + 0.5f;
        s += (x - s) * c;
        ASSERT_NEAR(filter.process(x), x - s, 2e-5) << i;
    }
}

TEST(OnePoleHighPassTest, BlocksOfAnyLengthGiveTheSameSignal) {
    OnePoleHighPass bySample(50.0f, 44100.0f);
    OnePoleHighPass byBlock(50.0f, 44100.0f);
    for (const int n : {1, 3, 4, 5, 32, 33, 96}) {
        std::vector<float> block(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i)
            block[static_cast<size_t>(i)] = std::cos(0.7f * static_cast<float>(i * n));
        std::vector<float> samples = block;
        for (float& x : samples)
            x = bySample.process(x);
        byBlock.process(block.data(), n);
        for (size_t i = 0; i < block.size(); ++i)
            ASSERT_NEAR(block[i], samples[i], 2e-6);
    }
}

TEST(OnePoleHighPassTest, AConstantInputEndsAtExactlyZero) {
    const tvk::RealtimeThreadScope flushed;
    OnePoleHighPass filter(80.0f, 44100.0f);
    std::vector<float> block(44100, 12.345f);
    filter.process(block.data(), static_cast<int>(block.size()));
    EXPECT_GT(block.front(), 12.0f);
    EXPECT_EQ(block.back(), 0.0f);
}

TEST(OnePoleHighPassTest, SilenceGivesSilenceAndResetGivesItBack) {
    OnePoleHighPass filter(5.0f, 44100.0f);
    EXPECT_EQ(filter.process(0.0f), 0.0f);
    const float first = filter.process(1.0f);
    filter.process(-3.0f);
    filter.reset();
    EXPECT_EQ(filter.process(0.0f), 0.0f);
    EXPECT_EQ(filter.process(1.0f), first);
}

}  // namespace
