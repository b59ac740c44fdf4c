#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <vector>

#include "Gains.h"
#include "LfoReference.h"
#include "algorithms/modulation/TremoloVintage.h"
#include "support/LogRecorder.h"

namespace {

std::unique_ptr<TremoloVintage> makeTremolo(float level, float rate, float duty, float attack,
                                            float release) {
    auto tremolo = std::make_unique<TremoloVintage>(kBlock, kRate);
    tremolo->setLevel(level, true);
    tremolo->setRate(rate, true);
    tremolo->setDuty(duty, true);
    tremolo->setAttack(attack);
    tremolo->setRelease(release);
    return tremolo;
}

double poleOf(double cutoffHz) {
    return std::exp(-2.0 * std::numbers::pi * cutoffHz / 44100.0);
}

TEST(TremoloVintage, WithHalfDutyAndFullTimesHasBothCutoffsAtTheRateOverItsShare) {
    const auto tremolo = makeTremolo(1.0f, 6.0f, 0.5f, 1.0f, 1.0f);
    EXPECT_NEAR(tremolo->attackCutoffHz(), 6.0 / (0.5 * 1.414), 1e-5);
    EXPECT_NEAR(tremolo->releaseCutoffHz(), 6.0 / (0.5 * 1.414), 1e-5);
}

TEST(TremoloVintage, MovesItsCutoffsWithEveryKnob) {
    const auto tremolo = makeTremolo(1.0f, 4.0f, 0.3f, 0.2f, 0.7f);
    EXPECT_NEAR(tremolo->attackCutoffHz(), 4.0 / (0.6 * 1.414 * (0.1 + 0.9 * 0.2)), 1e-4);
    EXPECT_NEAR(tremolo->releaseCutoffHz(), 4.0 / (0.4 * 1.414 * (0.1 + 0.9 * 0.7)), 1e-4);
    tremolo->setRate(8.0f, false);
    EXPECT_NEAR(tremolo->attackCutoffHz(), 8.0 / (0.6 * 1.414 * (0.1 + 0.9 * 0.2)), 1e-4);
    tremolo->setAttack(0.0f);
    EXPECT_NEAR(tremolo->attackCutoffHz(), 8.0 / (0.6 * 1.414 * 0.1), 1e-4);
    tremolo->setRelease(0.0f);
    EXPECT_NEAR(tremolo->releaseCutoffHz(), 8.0 / (0.4 * 1.414 * 0.1), 1e-4);
}

TEST(TremoloVintage, FollowsItsFormula) {
    struct Row {
        float level, rate, duty, attack, release;
    };
    for (const Row r : {Row{1.0f, 5.4f, 0.5f, 1.0f, 1.0f}, Row{0.86f, 7.21f, 0.5f, 0.96f, 0.94f},
                        Row{0.4f, 3.0f, 0.2f, 0.0f, 0.5f}, Row{1.0f, 10.0f, 0.9f, 0.3f, 0.0f}}) {
        const auto tremolo = makeTremolo(r.level, r.rate, r.duty, r.attack, r.release);
        const std::vector<float> gains = gainsOf(*tremolo, 2 * 44100 / kBlock);
        const reference::Composite lfo{r.rate, r.duty};
        const double attackPole = poleOf(r.rate / ((0.75 - 0.5 * r.duty) * 1.414 * (0.1 + 0.9 * r.attack)));
        const double releasePole = poleOf(r.rate / ((0.25 + 0.5 * r.duty) * 1.414 * (0.1 + 0.9 * r.release)));
        const double g = reference::t30(r.level);
        double attackState = 1.0;
        double releaseState = 0.0;
        for (size_t n = 0; n < gains.size(); ++n) {
            const bool isUp = lfo.at(static_cast<long>(n) + 1) > 0.0;
            const double y =
                isUp ? (1.0 - releasePole) + releasePole * releaseState : attackPole * attackState;
            attackState = releaseState = y;
            ASSERT_NEAR(gains[n], 1.0 - g + g * y, 1e-4) << r.rate << " Hz, sample " << n;
        }
    }
}

TEST(TremoloVintage, AtLevelZeroPassesTheSignalToTheBit) {
    const auto tremolo = makeTremolo(0.0f, 7.0f, 0.5f, 0.5f, 0.5f);
    for (int b = 0; b < 1000; ++b) {
        std::vector<float> left(kBlock), right(kBlock);
        for (int n = 0; n < kBlock; ++n) {
            left[n] = std::sin(0.3f * static_cast<float>(b + n));
            right[n] = 1.0f - left[n];
        }
        const std::vector<float> beforeLeft = left, beforeRight = right;
        tremolo->process(left.data(), right.data(), left.data(), right.data());
        ASSERT_EQ(left, beforeLeft);
        ASSERT_EQ(right, beforeRight);
    }
}

TEST(TremoloVintage, GivesBothChannelsOneGain) {
    const auto tremolo = makeTremolo(1.0f, 7.0f, 0.5f, 0.5f, 0.5f);
    for (int b = 0; b < 1000; ++b) {
        std::vector<float> left(kBlock, 1.0f), right(kBlock, -0.5f);
        tremolo->process(left.data(), right.data(), left.data(), right.data());
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(right[n], -0.5f * left[n]);
    }
}

// Away from a duty of one half, where the LFO changes its sign three times on its way up.
TEST(TremoloVintage, BeatsAtItsRate) {
    for (const float rate : {1.3f, 5.4f, 10.0f}) {
        const auto tremolo = makeTremolo(1.0f, rate, 0.35f, 0.1f, 0.1f);
        EXPECT_NEAR(swingsUp(0.3f, 0.7f, gainsOf(*tremolo, 20 * 44100 / kBlock)), 20.0f * rate, 1.01f)
            << rate;
    }
}

TEST(TremoloVintage, TakesAKnobBeyondItsRangeForZeroWithAnError) {
    const auto expected = makeTremolo(0.0f, 5.0f, 0.0f, 0.0f, 0.0f);
    const LogRecorder log;
    const auto tremolo = makeTremolo(1.5f, 5.0f, -0.1f, 2.0f, std::nanf(""));
    EXPECT_EQ(log.startingWith("Error").size(), 4u);
    EXPECT_EQ(tremolo->attackCutoffHz(), expected->attackCutoffHz());
    EXPECT_EQ(tremolo->releaseCutoffHz(), expected->releaseCutoffHz());
    EXPECT_EQ(gainsOf(*tremolo, 100), gainsOf(*expected, 100));
}

TEST(TremoloVintage, RunsARateOfZeroAtAThousandthOfAHertz) {
    const auto tremolo = makeTremolo(1.0f, 0.0f, 0.5f, 1.0f, 1.0f);
    EXPECT_NEAR(tremolo->attackCutoffHz(), 0.001 / (0.5 * 1.414), 1e-7);
    EXPECT_EQ(swingsUp(0.3f, 0.7f, gainsOf(*tremolo, 3000)), 0);
}

TEST(TremoloVintage, RestartsOnReset) {
    const auto tremolo = makeTremolo(1.0f, 7.0f, 0.3f, 0.5f, 0.5f);
    const std::vector<float> first = gainsOf(*tremolo, 500);
    gainsOf(*tremolo, 77);
    tremolo->reset();
    EXPECT_EQ(gainsOf(*tremolo, 500), first);
}

}  // namespace
