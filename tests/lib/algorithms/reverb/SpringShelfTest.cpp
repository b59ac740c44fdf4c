#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "algorithms/reverb/SpringShelf.h"

namespace {

// Gain of a steady sine, by its power over whole periods.
double gainAt(rvb::SpringShelf& shelf, double hz) {
    shelf.clear();
    std::vector<float> x(88200);
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = static_cast<float>(std::cos(2.0 * std::numbers::pi * hz * static_cast<double>(n) / 44100.0));
    shelf.process(x.data(), 88200);
    double power = 0.0;
    for (std::size_t n = 44100; n < x.size(); ++n)
        power += double{x[n]} * x[n];
    const double reference = hz == 22050.0 || hz == 0.0 ? 44100.0 : 22050.0;
    return 20.0 * std::log10(std::sqrt(power / reference));
}

TEST(SpringShelf, HasItsTwoGainsAtDcAndAtHalfTheRate) {
    for (auto [low, high] : {std::pair{-6.0F, 0.0F}, {-0.01F, -3.0F}, {-0.1F, -20.0F}, {6.0F, -6.0F}}) {
        rvb::SpringShelf shelf(44100.0F, low, high, 2500.0F);
        EXPECT_NEAR(gainAt(shelf, 0.0), low, 1e-3);
        EXPECT_NEAR(gainAt(shelf, 22050.0), high, 1e-3);
        const double between = gainAt(shelf, 2500.0);
        EXPECT_GT(between, std::min(low, high));
        EXPECT_LT(between, std::max(low, high));
    }
}

TEST(SpringShelf, EqualGainsAreAPlainGain) {
    rvb::SpringShelf shelf(44100.0F, -6.0F, -6.0F, 1000.0F);
    std::vector<float> x{1.0F, -1.0F, 0.5F, 0.25F, 1.0F, 0.0F, 0.0F};
    shelf.process(x.data(), 7);
    const float gain = std::pow(10.0F, -0.3F);
    EXPECT_FLOAT_EQ(x[0], gain);
    EXPECT_FLOAT_EQ(x[3], 0.25F * gain);
    EXPECT_EQ(x[6], 0.0F);
}

TEST(SpringShelf, AnyBlockLengthGivesTheSameStream) {
    std::vector<float> in(97);
    for (std::size_t n = 0; n < in.size(); ++n)
        in[n] = std::sin(static_cast<float>(n * n) * 0.01F);
    std::vector<float> whole = in;
    rvb::SpringShelf reference(44100.0F, -6.0F, 0.0F, 2500.0F);
    reference.process(whole.data(), 97);
    for (int block : {1, 3, 8}) {
        std::vector<float> x = in;
        rvb::SpringShelf shelf(44100.0F, -6.0F, 0.0F, 2500.0F);
        for (int n = 0; n < 97; n += block)
            shelf.process(x.data() + n, std::min(block, 97 - n));
        for (std::size_t n = 0; n < x.size(); ++n)
            ASSERT_NEAR(x[n], whole[n], 1e-6F) << n;
    }
}

}  // namespace
