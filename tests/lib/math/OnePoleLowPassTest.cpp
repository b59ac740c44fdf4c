#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "Response.h"
#include "math/OnePoleLowPass.h"

namespace {

using response::Complex;

TEST(OnePoleLowPassTest, EqualsItsTransferFunctionAtEveryFrequency) {
    for (const double corner : {100.0, 1000.0, 10000.0}) {
        const double rate = 44100.0;
        OnePoleLowPass filter(static_cast<float>(corner), static_cast<float>(rate));
        const auto h = response::impulse<float>(static_cast<int>(2.7 * rate / corner) + 64,
                                                [&](float* b, int n) { filter.process(b, n); });
        const double a = std::exp(-2.0 * std::numbers::pi * corner / rate);
        for (double f = 1.0; f < rate / 2; f *= 1.2) {
            const Complex z1 = std::polar(1.0, -2.0 * std::numbers::pi * f / rate);
            ASSERT_LE(std::abs(response::transform(h, f, rate) - (1.0 - a) / (1.0 - a * z1)), 2e-5)
                << f << " of " << corner;
        }
    }
}

TEST(OnePoleLowPassTest, BlocksOfAnyLengthGiveTheSameSignal) {
    const double a = std::exp(-2.0 * std::numbers::pi * 1000.0 / 44100.0);
    OnePoleLowPass filter(1000.0f, 44100.0f);
    double y = 0.0;
    for (const int n : {1, 3, 4, 5, 32, 33, 96}) {
        std::vector<float> block(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i)
            block[static_cast<std::size_t>(i)] = std::cos(0.7f * static_cast<float>(i * n));
        const std::vector<float> input = block;
        filter.process(block.data(), n);
        for (std::size_t i = 0; i < block.size(); ++i) {
            y = (1.0 - a) * input[i] + a * y;
            ASSERT_NEAR(block[i], y, 2e-6) << n << " " << i;
        }
    }
}

TEST(OnePoleLowPassTest, ResetForgets) {
    OnePoleLowPass filter(1000.0f, 44100.0f);
    std::vector<float> block(32, 1.0f);
    filter.process(block.data(), 32);
    filter.reset();
    std::vector<float> silence(32, 0.0f);
    filter.process(silence.data(), 32);
    EXPECT_EQ(silence, std::vector<float>(32, 0.0f));
}

}  // namespace
