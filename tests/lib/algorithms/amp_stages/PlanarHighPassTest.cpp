#include <cmath>
#include <gtest/gtest.h>

#include "StageReference.h"
#include "algorithms/amp/PlanarHighPass.h"

namespace {

using namespace stage_reference;

TEST(PlanarHighPass, IsTheOnePoleRecursionInTheOrderOfTime) {
    constexpr int kLength = 32;
    constexpr int kStride = 40;
    for (int phases = 1; phases <= 5; ++phases) {
        const double rateHz = 44100.0 * phases;
        PlanarHighPass filter(5.0f, static_cast<float>(rateHz), phases);
        const Signal in = noise(static_cast<std::size_t>(50 * kLength * phases), 100.0f);
        std::vector<double> truth(in.begin(), in.end());
        highPass(truth, 5.0, rateHz);
        for (std::size_t start = 0; start < in.size(); start += static_cast<std::size_t>(kLength * phases)) {
            Signal planes(static_cast<std::size_t>(kStride * phases));
            for (int n = 0; n < kLength; ++n) {
                for (int p = 0; p < phases; ++p)
                    planes.at(p * kStride + n) = in[start + static_cast<std::size_t>(n * phases + p)];
            }
            filter.process(planes.data(), kLength, kStride);
            for (int n = 0; n < kLength; ++n) {
                // Of 100: the recursion recirculates its roundings for 1 / (1 - pole), up to 7000, samples.
                for (int p = 0; p < phases; ++p)
                    ASSERT_NEAR(planes.at(p * kStride + n),
                                truth[start + static_cast<std::size_t>(n * phases + p)], 1e-3)
                        << phases << ' ' << start << ' ' << n;
            }
        }
    }
}

TEST(PlanarHighPass, IsThreeDecibelDownAtItsCornerAndFlatAbove) {
    const auto gainDb = [](double frequencyHz) {
        PlanarHighPass filter(50.0f, 44100.0f);
        Signal x = sine(frequencyHz, 1.0, 44100);
        filter.process(x.data(), static_cast<int>(x.size()));
        return decibel(std::abs(tone(&x[22050], 22050, frequencyHz)));
    };
    EXPECT_NEAR(gainDb(50.0), -3.01, 0.05);
    EXPECT_NEAR(gainDb(5000.0), 0.0, 0.05);
    EXPECT_NEAR(gainDb(10.0), -10.0 * std::log10(1.0 + 25.0), 0.05);
}

TEST(PlanarHighPass, LeavesNoRestOfAConstant) {
    PlanarHighPass filter(50.0f, 44100.0f);
    Signal x(44100, 300.0f);
    filter.process(x.data(), static_cast<int>(x.size()));
    EXPECT_LT(std::abs(x.back()), 1e-20f);
}

TEST(PlanarHighPass, ResetClearsItsMemory) {
    PlanarHighPass fresh(5.0f, 44100.0f);
    PlanarHighPass used(5.0f, 44100.0f);
    Signal x = noise(64, 1.0f);
    used.process(x.data(), 64);
    used.reset();
    Signal a = noise(64, 1.0f);
    Signal b = a;
    fresh.process(a.data(), 64);
    used.process(b.data(), 64);
    EXPECT_EQ(a, b);
}

}  // namespace
