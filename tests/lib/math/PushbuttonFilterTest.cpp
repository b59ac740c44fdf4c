#include <gtest/gtest.h>

#include "Response.h"
#include "math/PushbuttonBqHighShelf.h"
#include "math/PushbuttonFilter.h"
#include "math/PushbuttonFilters.h"

namespace {

constexpr int kLength = 32;
constexpr float kRate = 44100.0f;

// Multiplies by a factor and counts its blocks.
class Gain : public PushbuttonFilter::IFilter {
public:
    explicit Gain(float factor) : factor_(factor) {}
    void process(float* buffer) override {
        for (int n = 0; n < kLength; ++n)
            buffer[n] *= factor_;
        ++blocks;
    }
    int blocks = 0;

private:
    float factor_;
};

class TwoGains : public PushbuttonFilters::IFilter {
public:
    TwoGains(float off, float on) : off_(off), on_(on) {}
    void process(const float* input, float* offOutput, float* onOutput) override {
        for (int n = 0; n < kLength; ++n) {
            offOutput[n] = off_ * input[n];
            onOutput[n] = on_ * input[n];
        }
    }

private:
    float off_;
    float on_;
};

template <typename Switch>
std::vector<float> run(Switch& button, int blocks, float input = 1.0f) {
    std::vector<float> output;
    for (int i = 0; i < blocks; ++i) {
        std::vector<float> block(kLength, input);
        button.process(block.data());
        output.insert(output.end(), block.begin(), block.end());
    }
    return output;
}

TEST(PushbuttonFilterTest, StartsOutAndRunsItsFilterAllTheSame) {
    Gain gain(5.0f);
    PushbuttonFilter button(kLength, kRate, &gain);
    EXPECT_FALSE(button.isOn());
    for (const float y : run(button, 3))
        EXPECT_EQ(y, 1.0f);
    EXPECT_EQ(gain.blocks, 3);
}

TEST(PushbuttonFilterTest, FadesWithATimeConstantOfTwentyMilliseconds) {
    Gain silence(0.0f);
    PushbuttonFilter button(kLength, kRate, &silence);
    button.setSwitch(true);
    EXPECT_TRUE(button.isOn());
    const std::vector<float> in = run(button, 200);
    for (size_t n = 0; n < in.size(); ++n) {
        ASSERT_NEAR(in[n], std::exp(-static_cast<double>(n + 1) / (0.02 * kRate)), 2e-4) << n;
    }
    button.setSwitch(false);
    const std::vector<float> out = run(button, 200);
    for (size_t n = 0; n < out.size(); ++n) {
        ASSERT_NEAR(out[n], 1.0 - std::exp(-static_cast<double>(n + 1) / (0.02 * kRate)), 1e-3) << n;
    }
}

TEST(PushbuttonFilterTest, WetAndDrySumToOneAtEverySampleOfAFade) {
    Gain wire(1.0f);
    PushbuttonFilter button(kLength, kRate, &wire);
    for (const bool on : {true, false, true}) {
        button.setSwitch(on);
        for (const float y : run(button, 20, 0.7f))
            ASSERT_NEAR(y, 0.7f, 1e-6f);
    }
}

TEST(PushbuttonFilterTest, AtNoTimeDoublesTheLevel) {
    Gain boost(1.2f);
    PushbuttonFilter button(kLength, kRate, &boost);
    button.setSwitch(true);
    for (const float y : run(button, 200)) {
        ASSERT_GE(y, 1.0f - 1e-6f);
        ASSERT_LE(y, 1.2f + 1e-6f);
    }
}

TEST(PushbuttonFilterTest, InitIsThereAtOnce) {
    Gain silence(0.0f);
    PushbuttonFilter button(kLength, kRate, &silence);
    button.initSwitch(true);
    for (const float y : run(button, 4))
        ASSERT_NEAR(y, 0.0f, 1e-4f);
    button.initSwitch(false);
    for (const float y : run(button, 4))
        ASSERT_EQ(y, 1.0f);
}

TEST(PushbuttonFilterTest, ResetEndsAFade) {
    Gain silence(0.0f);
    PushbuttonFilter button(kLength, kRate, &silence);
    button.setSwitch(true);
    EXPECT_GT(run(button, 1).back(), 0.9f);
    button.reset();
    for (const float y : run(button, 2))
        ASSERT_NEAR(y, 0.0f, 1e-4f);
}

TEST(PushbuttonFilterTest, AFadeAndItsRestAreOneFormulaToTheBit) {
    Gain gain(3.0f);
    PushbuttonFilter button(kLength, kRate, &gain);
    OnePoleRamp ramp(0.02f, kRate);
    button.setSwitch(true);
    ramp.setTarget(1.0f);
    for (const float y : run(button, 1000, 0.3f)) {
        const float s = ramp.tick();
        ASSERT_EQ(y, 0.3f * (1.0f - s) + 0.3f * 3.0f * s);
    }
    EXPECT_TRUE(ramp.isAtRest());
}

TEST(PushbuttonFiltersTest, FadesFromOneFilterToTheOtherInTenMilliseconds) {
    TwoGains gains(0.5f, -2.0f);
    PushbuttonFilters button(kLength, kRate, &gains);
    for (const float y : run(button, 2))
        EXPECT_EQ(y, 0.5f);
    button.setSwitch(true);
    EXPECT_TRUE(button.isOn());
    const std::vector<float> fade = run(button, 120);
    for (size_t n = 0; n < fade.size(); ++n) {
        const double left = std::exp(-static_cast<double>(n + 1) / (0.01 * kRate));
        ASSERT_NEAR(fade[n], 0.5 * left - 2.0 * (1.0 - left), 5e-4) << n;
    }
    button.initSwitch(false);
    for (const float y : run(button, 2))
        ASSERT_EQ(y, 0.5f);
    button.setSwitch(true);
    button.reset();
    for (const float y : run(button, 2))
        ASSERT_NEAR(y, -2.0f, 1e-4f);
}

TEST(PushbuttonBqHighShelfTest, IsItsShelfWhenInAndAWireWhenOut) {
    PushbuttonBqHighShelf button(kLength, kRate, 9.0f, 3000.0f, 2.0f);
    BqHighShelf reference(9.0f, 3000.0f, 2.0f, kRate);
    for (int i = 0; i < 40; ++i) {
        std::vector<float> block(kLength);
        for (int n = 0; n < kLength; ++n) {
            block[static_cast<size_t>(n)] = std::sin(0.37f * static_cast<float>(i * kLength + n));
        }
        const std::vector<float> input = block;
        std::vector<float> expected = block;
        reference.process(expected.data(), kLength);
        if (i == 20) button.initSwitch(true);
        button.process(block.data());
        for (size_t n = 0; n < block.size(); ++n) {
            ASSERT_NEAR(block[n], i < 20 ? input[n] : expected[n], 2e-4f) << i;
        }
    }
}

TEST(PushbuttonBqHighShelfTest, ItsShelfCanBeSetLive) {
    PushbuttonBqHighShelf button(kLength, kRate, 0.0f, 3000.0f, 4.0f);
    button.initSwitch(true);
    button.shelf().setGainDb(20.0f);
    // At half the rate the shelf is at its full gain.
    std::vector<float> block(kLength);
    for (int i = 0; i < 20; ++i) {
        for (int n = 0; n < kLength; ++n)
            block[static_cast<size_t>(n)] = n % 2 ? -1.0f : 1.0f;
        button.process(block.data());
    }
    EXPECT_NEAR(block.front(), 10.0f, 1e-2f);
}

}  // namespace
