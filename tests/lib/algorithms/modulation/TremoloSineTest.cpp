#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "Gains.h"
#include "LfoReference.h"
#include "algorithms/modulation/TremoloSine.h"
#include "support/LogRecorder.h"

namespace {

struct Knobs {
    float level = 1.0f, rate = 6.0f, duty = 0.5f, dist = 0.5f, clip = 0.0f;
};

std::unique_ptr<TremoloSine> makeTremolo(const Knobs& knobs) {
    auto tremolo = std::make_unique<TremoloSine>(kBlock, kRate);
    tremolo->setLevel(knobs.level, true);
    tremolo->setRate(knobs.rate, true);
    tremolo->setDuty(knobs.duty, true);
    tremolo->setDist(knobs.dist, true);
    tremolo->setClip(knobs.clip, true);
    return tremolo;
}

TEST(TremoloSine, FollowsItsFormula) {
    for (const Knobs& k : {Knobs{}, Knobs{0.86f, 6.56f, 0.5f, 0.0f, 0.0f},
                           Knobs{0.5f, 1.3f, 0.2f, 0.5f, 0.5f}, Knobs{1.0f, 10.0f, 0.8f, 1.0f, 1.0f}}) {
        const auto tremolo = makeTremolo(k);
        const std::vector<float> gains = gainsOf(*tremolo, 2 * 44100 / kBlock);
        const reference::Composite lfo{k.rate, k.duty, k.dist};
        const double g = reference::t30(k.level);
        for (size_t n = 0; n < gains.size(); ++n) {
            const double u = (k.clip + 1.0) * (0.5 + 0.5 * lfo.at(static_cast<long>(n) + 1));
            ASSERT_NEAR(gains[n], u > 1.0 ? 1.0 : 1.0 - g + g * u, 3e-5) << k.rate << " Hz, sample " << n;
        }
    }
}

TEST(TremoloSine, IsFlatAtUnityWhereTheClippedLfoExceedsOne) {
    const auto tremolo = makeTremolo({.clip = 1.0f});
    const std::vector<float> gains = gainsOf(*tremolo, 44100 / kBlock);
    const reference::Composite lfo{6.0};
    int flat = 0;
    for (size_t n = 0; n < gains.size(); ++n) {
        const double u = 2.0 * (0.5 + 0.5 * lfo.at(static_cast<long>(n) + 1));
        if (u > 1.0001) {
            ASSERT_EQ(gains[n], 1.0f) << n;
            ++flat;
        }
    }
    // Twice the LFO is beyond 1 for half of the time.
    EXPECT_NEAR(flat, 0.5 * gains.size(), 0.01 * gains.size());
}

TEST(TremoloSine, SwingsDownToItsLevel) {
    for (const float level : {0.2f, 0.5f, 1.0f}) {
        const auto tremolo = makeTremolo({.level = level});
        const std::vector<float> gains = gainsOf(*tremolo, 44100 / kBlock);
        EXPECT_NEAR(*std::min_element(gains.begin(), gains.end()), 1.0 - reference::t30(level), 1e-3);
        EXPECT_NEAR(*std::max_element(gains.begin(), gains.end()), 1.0, 1e-3);
    }
}

TEST(TremoloSine, AtLevelZeroPassesTheSignalToTheBit) {
    const auto tremolo = makeTremolo({.level = 0.0f, .clip = 0.5f});
    for (const float gain : gainsOf(*tremolo, 2000))
        ASSERT_EQ(gain, 1.0f);
}

TEST(TremoloSine, GivesBothChannelsOneGain) {
    const auto tremolo = makeTremolo({});
    for (int b = 0; b < 500; ++b) {
        std::vector<float> left(kBlock, 1.0f), right(kBlock, -0.5f);
        tremolo->process(left.data(), right.data(), left.data(), right.data());
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(right[n], -0.5f * left[n]);
    }
}

TEST(TremoloSine, LimitsItsRateSilently) {
    const LogRecorder log;
    EXPECT_EQ(gainsOf(*makeTremolo({.rate = 20.0f}), 500), gainsOf(*makeTremolo({.rate = 10.0f}), 500));
    EXPECT_EQ(gainsOf(*makeTremolo({.rate = 0.0f}), 500), gainsOf(*makeTremolo({.rate = 1.3f}), 500));
    EXPECT_TRUE(log.lines().empty());
}

TEST(TremoloSine, BeatsAtItsRate) {
    for (const float rate : {1.3f, 5.4f, 10.0f}) {
        const auto tremolo = makeTremolo({.rate = rate});
        EXPECT_NEAR(swingsUp(0.3f, 0.7f, gainsOf(*tremolo, 20 * 44100 / kBlock)), 20.0f * rate, 1.01f)
            << rate;
    }
}

// The ramp's every sample counts: the phase after a glide is the sum of all rates on the way.
TEST(TremoloSine, GlidesToANewRateSampleBySample) {
    const auto tremolo = makeTremolo({.rate = 2.0f});
    tremolo->setRate(8.0f, false);
    const std::vector<float> gains = gainsOf(*tremolo, 200);
    double cycles = 0.0;
    double rate = 2.0;
    for (size_t n = 0; n < gains.size(); ++n) {
        rate += (1.0 - std::exp(-1.0 / (0.02 * 44100.0))) * (8.0 - rate);
        cycles += rate / 44100.0;
        const reference::Composite atOneHz{1.0};
        const double v = atOneHz.at(cycles / reference::cyclesPerSample(1.0));
        ASSERT_NEAR(gains[n], 0.5 + 0.5 * v, 2e-3) << n;
    }
}

TEST(TremoloSine, TakesAKnobBeyondItsRangeForZeroWithAnError) {
    const std::vector<float> expected =
        gainsOf(*makeTremolo({.level = 0.7f, .duty = 0.0f, .dist = 0.0f, .clip = 0.0f}), 100);
    const LogRecorder log;
    EXPECT_EQ(gainsOf(*makeTremolo({.level = 0.7f, .duty = 1.1f, .dist = -1.0f, .clip = 9.0f}), 100),
              expected);
    EXPECT_EQ(log.startingWith("Error").size(), 3u);
    for (const float gain : gainsOf(*makeTremolo({.level = std::nanf("")}), 10))
        EXPECT_EQ(gain, 1.0f);
    EXPECT_EQ(log.startingWith("Error").size(), 4u);
}

TEST(TremoloSine, RestartsOnReset) {
    const auto tremolo = makeTremolo({});
    const std::vector<float> first = gainsOf(*tremolo, 500);
    gainsOf(*tremolo, 77);
    tremolo->reset();
    const std::vector<float> again = gainsOf(*tremolo, 500);
    for (size_t n = 0; n < first.size(); ++n)
        ASSERT_NEAR(again[n], first[n], 5e-6f) << n;
}

}  // namespace
