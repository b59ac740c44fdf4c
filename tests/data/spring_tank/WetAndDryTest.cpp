// The stored level against the amp that the response is played in: wet and dry at the vibrato channel's third
// valve.
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

#include "algorithms/reverb/MeasuredSpringTank.h"
#include "algorithms/reverb/SpringTankResponse.h"
#include "math/FirstOrderShelf.h"
#include "utility/BackgroundJobs.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0F;
constexpr float kMixerLoss = 0.04050419F;

struct Levels {
    double wet = 0.0;
    double dry = 0.0;
    double ratioDb() const { return 10.0 * std::log10(wet / dry); }
};

// Power of both ways over the last `measured` blocks of `all`; next gives the tank's input in volts.
template <typename Next>
Levels play(int all, int measured, Next next) {
    SpringTankResponse::setFile(TARVEK_TANK);
    MeasuredSpringTank tank(kBlock, kRate, SpringTankResponse::get(kRate));
    tank.setLevel(1.0F, true);
    OnePoleLowPass returnFilter(10000.0F, kRate);
    FirstOrderShelf shelf(kBlock, kRate, 0.0F, 5.0F, 5000.0F);
    Levels levels;
    std::vector<float> dry(kBlock), wet(kBlock);
    for (int block = 0; block < all; ++block) {
        for (float& sample : dry)
            sample = next();
        tank.process(dry.data(), wet.data());
        tvk::BackgroundJobs::waitUntilIdle();
        returnFilter.process(wet.data(), kBlock);
        for (float& sample : dry)
            sample *= kMixerLoss;
        shelf.process(dry.data());
        if (block < all - measured) continue;
        for (int n = 0; n < kBlock; ++n) {
            levels.wet += wet[static_cast<std::size_t>(n)] * wet[static_cast<std::size_t>(n)];
            levels.dry += dry[static_cast<std::size_t>(n)] * dry[static_cast<std::size_t>(n)];
        }
    }
    return levels;
}

constexpr int blocks(double seconds) {
    return static_cast<int>(seconds * kRate / kBlock);
}

TEST(SpringTankLevel, WetEqualsDryForASineOf1kHzWithin3Db) {
    int n = 0;
    const Levels levels = play(blocks(6.0), blocks(0.5), [&n] {
        return static_cast<float>(0.3 * std::sin(2.0 * std::numbers::pi * 1000.0 * n++ / kRate));
    });
    EXPECT_NEAR(levels.ratioDb(), 0.0, 3.0);
}

TEST(SpringTankLevel, WetEqualsDryForAThirdOfAnOctaveOfNoiseAt1kHzWithin3Db) {
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    // Two band-passes of the cookbook's form, Q 4.3.
    const double w = 2.0 * std::numbers::pi * 1000.0 / kRate, alpha = std::sin(w) / (2.0 * 4.3);
    double state[2][4] = {};
    const Levels levels = play(blocks(14.0), blocks(10.0), [&] {
        double x = 0.3 * normal(random);
        for (auto& [x1, x2, y1, y2] : state) {
            const double y = (alpha * (x - x2) + 2.0 * std::cos(w) * y1 - (1.0 - alpha) * y2) / (1.0 + alpha);
            x2 = x1, x1 = x, y2 = y1, y1 = y;
            x = y;
        }
        return static_cast<float>(x);
    });
    EXPECT_NEAR(levels.ratioDb(), 0.0, 3.0);
}

}  // namespace
