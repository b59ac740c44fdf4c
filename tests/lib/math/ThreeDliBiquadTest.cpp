#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "math/ThreeDliBiquad.h"

namespace {

constexpr float kRate = 44100.0f;

// A function that tri-linear mixing gives exactly: each value a product of straight lines in the three
// controls.
std::array<float, 5> law(double x, double y, double z) {
    return {static_cast<float>(1.0 + x), static_cast<float>(0.5 + y * z), static_cast<float>(2.0 - x * y * z),
            static_cast<float>(100.0 + 50.0 * z), static_cast<float>(2000.0 + 500.0 * x * z)};
}

std::vector<float> table(std::array<float, 5> (*function)(double, double, double)) {
    std::vector<float> made;
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            for (int k = 0; k < 5; ++k) {
                for (const float value : function(i / 4.0, j / 4.0, k / 4.0))
                    made.push_back(value);
            }
        }
    }
    return made;
}

void expectValues(const BqTonestackValues& values, const std::array<float, 5>& expected,
                  float relative = 1e-5f) {
    const float given[] = {values.gl, values.gm, values.gh, values.f1, values.f2};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_NEAR(given[i], expected[i], relative * std::abs(expected[i])) << i;
}

TEST(ThreeDliBiquadTest, GivesEveryGridPointExactly) {
    // A law with no straight lines, so that a wrong neighbour shows.
    const std::vector<float> points = table([](double x, double y, double z) {
        const auto wild = [&](double a) {
            return static_cast<float>(1.0 + 0.5 * std::sin(a + 7 * x + 19 * y + 41 * z));
        };
        return std::array<float, 5>{wild(0), wild(1), wild(2), 100 * wild(3), 1000 * wild(4)};
    });
    ThreeDliBiquad stack(points.data(), kRate);
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            for (int k = 0; k < 5; ++k) {
                stack.set(0, static_cast<float>(i) / 4.0f, true);
                stack.set(1, static_cast<float>(j) / 4.0f, true);
                stack.set(2, static_cast<float>(k) / 4.0f, true);
                const float* const point = &points[static_cast<size_t>(125 * i + 25 * j + 5 * k)];
                expectValues(stack.values(), {point[0], point[1], point[2], point[3], point[4]}, 0.0f);
            }
        }
    }
}

TEST(ThreeDliBiquadTest, MixesLinearlyAlongEachControl) {
    const std::vector<float> points = table(law);
    ThreeDliBiquad stack(points.data(), kRate);
    for (const float x : {0.0f, 0.1f, 0.5f, 0.77f, 1.0f}) {
        for (const float y : {0.0f, 0.3f, 0.99f}) {
            for (const float z : {0.05f, 0.6f, 1.0f}) {
                stack.set(0, x, false);
                stack.set(1, y, false);
                stack.set(2, z, false);
                expectValues(stack.values(), law(x, y, z));
            }
        }
    }
}

TEST(ThreeDliBiquadTest, AControlAtOneIsTheLastPlaneWithWholeWeight) {
    const std::vector<float> points = table(law);
    const ThreeDliBiquad stack(points.data(), kRate, 1.0f, 1.0f, 1.0f);
    const float* const last = &points[620];
    expectValues(stack.values(), {last[0], last[1], last[2], last[3], last[4]}, 0.0f);
}

TEST(ThreeDliBiquadTest, ControlsAreLimitedToTheirRange) {
    const std::vector<float> points = table(law);
    ThreeDliBiquad stack(points.data(), kRate);
    stack.set(0, 7.0f, true);
    stack.set(1, -7.0f, true);
    stack.set(2, std::nanf(""), true);
    expectValues(stack.values(), law(1.0, 0.0, 0.0), 0.0f);
}

TEST(ThreeDliBiquadTest, HandsItsValuesAndTheFlagToTheFilter) {
    const std::vector<float> points = table([](double x, double, double) {
        const float gain = static_cast<float>(1.0 + x);
        return std::array<float, 5>{gain, gain, gain, 100.0f, 2000.0f};
    });
    ThreeDliBiquad stack(points.data(), kRate, 0.0f);
    std::vector<float> block(32, 1.0f);
    stack.process(block.data(), 32);
    EXPECT_NEAR(block.back(), 1.0f, 1e-4f);
    stack.set(0, 1.0f, false);
    block.assign(32, 1.0f);
    stack.process(block.data(), 32);
    EXPECT_GT(block.back(), 1.1f);
    EXPECT_LT(block.back(), 1.5f) << "on its way";
    stack.set(0, 1.0f, true);
    block.assign(32, 1.0f);
    stack.process(block.data(), 32);
    for (const float y : block)
        EXPECT_NEAR(y, 2.0f, 1e-3f) << "there at once";
    stack.clear();
    block.assign(32, 0.0f);
    stack.process(block.data(), 32);
    for (const float y : block)
        EXPECT_EQ(y, 0.0f);
}

}  // namespace
