#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "math/DcBlocker.h"
#include "math/OnePoleLowPass.h"

namespace {

constexpr float kRate = 44100.0F;

double pole(double hz) {
    return std::exp(-2.0 * std::numbers::pi * hz / kRate);
}

std::vector<float> ramped(int count) {
    std::vector<float> x(static_cast<std::size_t>(count));
    for (int n = 0; n < count; ++n)
        x[static_cast<std::size_t>(n)] = static_cast<float>(std::sin(0.37 * n * n / 50.0) + 0.2);
    return x;
}

TEST(DcBlocker, TakesItsOutputBeforeItsStateMoves) {
    for (int block : {1, 3, 32, 37}) {
        DcBlocker filter(180.0F, kRate);
        const double c = 1.0 - pole(180.0);
        double s = 0.0;
        const auto in = ramped(370);
        for (std::size_t n = 0; n + static_cast<std::size_t>(block) <= in.size();
             n += static_cast<std::size_t>(block)) {
            std::vector<float> x(in.begin() + static_cast<long>(n),
                                 in.begin() + static_cast<long>(n) + block);
            filter.process(x.data(), block);
            for (int i = 0; i < block; ++i) {
                const double sample = in[n + static_cast<std::size_t>(i)];
                ASSERT_NEAR(x[static_cast<std::size_t>(i)], sample - s, 3e-6)
                    << n + static_cast<std::size_t>(i);
                s += (sample - s) * c;
            }
        }
    }
}

TEST(DcBlocker, AConstantEndsAtZero) {
    DcBlocker filter(370.0F, kRate);
    std::vector<float> x(44100, 1.0F);
    filter.process(x.data(), 44100);
    EXPECT_FLOAT_EQ(x.front(), 1.0F);
    EXPECT_NEAR(x.back(), 0.0F, 1e-30F);
}

TEST(OnePoleLowPass, FollowsItsRecursion) {
    for (int block : {1, 3, 32, 37}) {
        OnePoleLowPass filter(1000.0F, kRate);
        const double p = pole(1000.0);
        double y = 0.0;
        auto x = ramped(370);
        const auto in = x;
        for (int n = 0; n + block <= 370; n += block)
            filter.process(x.data() + n, block);
        for (int n = 0; n < 370 / block * block; ++n) {
            y = (1.0 - p) * in[static_cast<std::size_t>(n)] + p * y;
            ASSERT_NEAR(x[static_cast<std::size_t>(n)], y, 3e-6) << n;
        }
    }
}

TEST(OnePoleLowPass, PassesDcWholeAndKeepsItsStateWhenTheCornerMoves) {
    OnePoleLowPass filter(500.0F, kRate);
    std::vector<float> x(44100, 1.0F);
    filter.process(x.data(), 44100);
    EXPECT_NEAR(x.back(), 1.0F, 1e-5F);
    filter.setFrequency(5000.0F);
    x.assign(8, 1.0F);
    filter.process(x.data(), 8);
    for (float sample : x)
        EXPECT_NEAR(sample, 1.0F, 1e-5F);
}

}  // namespace
