#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "Gains.h"
#include "LfoReference.h"
#include "algorithms/modulation/OpticalTremoloCell.h"
#include "algorithms/modulation/PhotocellLaw.h"
#include "support/LogRecorder.h"

namespace {

double exactLaw(double z) {
    return 1.04 / std::pow(1.0 + std::exp(z), 1.0 / 2.4) - 0.019;
}

// The cell in double precision, a sample at a time, from its formulas.
class ReferenceCell {
public:
    ReferenceCell(double slowestHz, double fastestHz, double floorSlow, double floorFast, double speed,
                  double intensity)
        : increment_(reference::cyclesPerSample(slowestHz + (fastestHz - slowestHz) * speed)),
          threshold_(0.86 - 0.06 * (std::pow(81.0, speed) - 1.0) / 80.0),
          slope_(-12.6 - 5.4 * std::log(1.0 + speed * 1012.99) / std::log(1013.99)),
          floor_(floorSlow + (floorFast - floorSlow) * speed),
          fallingSeconds_(0.0732 - 0.02 * speed),
          depth_(intensity) {}

    double next() {
        cycles_ += increment_;
        const bool lit = reference::parabolicSine(cycles_) > threshold_;
        e_ += (lit ? 1.0 / 0.0238 : -1.0 / fallingSeconds_) / 44100.0;
        e_ = std::clamp(e_, 0.0, 1.0);
        const double z = (lit ? 0.5 - e_ : e_ - 0.5) * slope_;
        const double c = (lit ? 1.0 - exactLaw(z) : exactLaw(z)) * (1.0 - floor_);
        return 1.0 - std::clamp(c, 0.0, 1.0) * depth_;
    }

private:
    double increment_, threshold_, slope_, floor_, fallingSeconds_, depth_;
    double cycles_ = 0.0;
    double e_ = 0.0;
};

// The cell as it stands behind its knobs, at once.
template <typename Ranges>
std::unique_ptr<OpticalTremoloCell> makeCell(const Ranges& ranges, float speed, float intensity) {
    auto cell = std::make_unique<OpticalTremoloCell>(kBlock, kRate, ranges);
    cell->setSpeed(speed, true);
    cell->setIntensity(intensity, true);
    return cell;
}

std::unique_ptr<OpticalTremoloCell> flagshipCell(float speed, float intensity) {
    return makeCell(OpticalTremoloCell::kArvelReverb65Ranges, speed, intensity);
}

TEST(PhotocellLaw, FollowsTheFormulaInDoublePrecision) {
    for (double z = -40.0; z <= 40.0; z += 0.0007) {
        const float argument = static_cast<float>(z);
        ASSERT_NEAR(photocellLaw(argument), exactLaw(argument), 2e-6) << argument;
    }
}

TEST(OpticalTremoloCell, OfTheFlagshipFollowsItsLawAtEverySpeed) {
    for (const float speed : {0.0f, 0.3f, 0.5f, 1.0f}) {
        for (const float intensity : {0.4f, 1.0f}) {
            const auto cell = flagshipCell(speed, intensity);
            ReferenceCell expected(3.22, 9.9, 0.14125374, 0.19054608, speed, intensity);
            const std::vector<float> gains = gainsOf(*cell, 2 * 44100 / kBlock);
            for (size_t n = 0; n < gains.size(); ++n)
                ASSERT_NEAR(gains[n], expected.next(), 5e-5) << "speed " << speed << ", sample " << n;
        }
    }
}

TEST(OpticalTremoloCell, OfTheUnitFollowsItsLawAtEverySpeed) {
    for (const float speed : {0.0f, 0.3f, 0.5f, 1.0f}) {
        const auto cell = makeCell(OpticalTremoloCell::kUnitRanges, speed, 0.8f);
        ReferenceCell expected(2.0, 10.0, 0.14125, 0.19054, speed, 0.8);
        const std::vector<float> gains = gainsOf(*cell, 2 * 44100 / kBlock);
        for (size_t n = 0; n < gains.size(); ++n)
            ASSERT_NEAR(gains[n], expected.next(), 5e-5) << "speed " << speed << ", sample " << n;
    }
}

TEST(OpticalTremoloCell, BeatsAtTheRateOfItsSpeed) {
    struct Row {
        float speed;
        double hz;
    };
    for (const Row row : {Row{0.0f, 3.22}, Row{0.5f, 6.56}, Row{1.0f, 9.9}}) {
        const auto cell = flagshipCell(row.speed, 1.0f);
        gainsOf(*cell, 1000);
        const int blocks = 20 * 44100 / kBlock;
        EXPECT_NEAR(swingsUp(0.5f, 0.7f, gainsOf(*cell, blocks)) / 20.0, row.hz, 0.05) << row.speed;
    }
}

TEST(OpticalTremoloCell, StandsAtThreeTenthsAtTheStart) {
    OpticalTremoloCell fresh(kBlock, kRate);
    const auto set = makeCell(OpticalTremoloCell::kUnitRanges, 0.3f, 0.3f);
    EXPECT_EQ(gainsOf(fresh, 500), gainsOf(*set, 500));
}

TEST(OpticalTremoloCell, AtIntensityZeroPassesTheSignalToTheBit) {
    const auto cell = flagshipCell(0.7f, 0.0f);
    for (int b = 0; b < 2000; ++b) {
        std::vector<float> x(kBlock);
        for (int n = 0; n < kBlock; ++n)
            x[n] = std::sin(0.1f * static_cast<float>(n + b));
        const std::vector<float> before = x;
        cell->process(x.data());
        ASSERT_EQ(x, before) << b;
    }
}

TEST(OpticalTremoloCell, IsMonoEvenForStereo) {
    const auto cell = flagshipCell(0.5f, 1.0f);
    const auto twin = flagshipCell(0.5f, 1.0f);
    for (int b = 0; b < 300; ++b) {
        float left[kBlock], right[kBlock], gain[kBlock];
        for (int n = 0; n < kBlock; ++n) {
            left[n] = std::sin(0.11f * static_cast<float>(n + b * kBlock));
            right[n] = 0.3f * std::cos(0.07f * static_cast<float>(n + b * kBlock));
        }
        float outLeft[kBlock], outRight[kBlock];
        cell->process(left, right, outLeft, outRight);
        twin->gains(gain);
        for (int n = 0; n < kBlock; ++n) {
            ASSERT_EQ(outLeft[n], outRight[n]);
            const double mean = (static_cast<double>(left[n]) + right[n]) * 0.5;
            ASSERT_NEAR(outLeft[n], gain[n] * mean, 1e-7);
        }
    }
}

TEST(OpticalTremoloCell, InStereoGivesBothChannelsOneGain) {
    const auto cell = flagshipCell(0.5f, 1.0f);
    const auto twin = flagshipCell(0.5f, 1.0f);
    for (int b = 0; b < 300; ++b) {
        float left[kBlock], right[kBlock], gain[kBlock];
        std::fill_n(left, kBlock, 0.5f);
        std::fill_n(right, kBlock, -2.0f);
        cell->processStereo(left, right, left, right);
        twin->gains(gain);
        for (int n = 0; n < kBlock; ++n) {
            ASSERT_EQ(left[n], 0.5f * gain[n]);
            ASSERT_EQ(right[n], -2.0f * gain[n]);
        }
    }
}

TEST(OpticalTremoloCell, MutedHasAGainOfOne) {
    const auto cell = flagshipCell(0.5f, 1.0f);
    cell->setMute(true, true);
    for (const float gain : gainsOf(*cell, 500))
        ASSERT_EQ(gain, 1.0f);
    cell->setMute(false, true);
    const std::vector<float> gains = gainsOf(*cell, 500);
    EXPECT_LT(*std::min_element(gains.begin(), gains.end()), 0.3f);
}

TEST(OpticalTremoloCell, FadesWhenMutedInLiveUse) {
    const auto cell = flagshipCell(0.5f, 1.0f);
    const auto unmuted = flagshipCell(0.5f, 1.0f);
    gainsOf(*cell, 100);
    gainsOf(*unmuted, 100);
    cell->setMute(true, false);
    const std::vector<float> gains = gainsOf(*cell, 500);
    const std::vector<float> before = gainsOf(*unmuted, 500);
    // gain = 1 - c depth m, with m on its way from 1 to 0 in 20 ms.
    for (size_t n = 0; n < gains.size(); ++n) {
        const double block = std::floor(n / 32.0);
        const double within = (n - block * 32.0 + 1.0) / 32.0;
        const double from = std::exp(-block * 32.0 / (0.02 * 44100.0));
        const double to = std::exp(-(block + 1.0) * 32.0 / (0.02 * 44100.0));
        ASSERT_NEAR(1.0 - gains[n], (1.0 - before[n]) * (from + within * (to - from)), 1e-5) << n;
    }
}

TEST(OpticalTremoloCell, GlidesToANewIntensityAndIsThereAtOnceAfterInit) {
    const auto glided = flagshipCell(0.5f, 0.0f);
    const auto snapped = flagshipCell(0.5f, 0.0f);
    glided->setIntensity(1.0f, false);
    snapped->setIntensity(1.0f, true);
    const std::vector<float> slow = gainsOf(*glided, 400);
    const std::vector<float> fast = gainsOf(*snapped, 400);
    EXPECT_GT(slow[0], 1.0f - 0.01f * (1.0f - fast[0]) - 1e-6f);
    EXPECT_NEAR(slow.back(), fast.back(), 1e-5f);
    ReferenceCell expected(3.22, 9.9, 0.14125374, 0.19054608, 0.5, 1.0);
    EXPECT_NEAR(fast[0], expected.next(), 1e-5);
}

TEST(OpticalTremoloCell, LimitsItsKnobs) {
    const auto limited = flagshipCell(1.0f, 1.0f);
    const auto beyond = flagshipCell(7.0f, 2.0f);
    EXPECT_EQ(gainsOf(*limited, 300), gainsOf(*beyond, 300));
    const auto lowest = flagshipCell(0.0f, 1.0f);
    const auto below = flagshipCell(-1.0f, 1.0f);
    EXPECT_EQ(gainsOf(*lowest, 300), gainsOf(*below, 300));
    const auto noNumber = flagshipCell(std::nanf(""), 1.0f);
    const auto still = flagshipCell(0.0f, 1.0f);
    EXPECT_EQ(gainsOf(*noNumber, 300), gainsOf(*still, 300));
}

TEST(OpticalTremoloCell, LogsItsKnobsWithValueAndPanel) {
    const auto cell = flagshipCell(0.0f, 0.0f);
    const LogRecorder log;
    cell->setSpeed(0.5f, false);
    cell->setIntensity(1.5f, true);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{
                               "OpticalTremoloCell: Speed: knob=0.500, value=6.560, panel=5.50",
                               "OpticalTremoloCell: Intensity: knob=1.000, value=1.000, panel=10.00"}));
}

TEST(OpticalTremoloCell, RestartsOnReset) {
    const auto cell = flagshipCell(0.5f, 1.0f);
    const std::vector<float> first = gainsOf(*cell, 300);
    gainsOf(*cell, 123);
    cell->reset();
    EXPECT_EQ(gainsOf(*cell, 300), first);
    cell->setSpeed(0.9f, false);
    cell->reset();
    const auto there = flagshipCell(0.9f, 1.0f);
    EXPECT_EQ(gainsOf(*cell, 300), gainsOf(*there, 300));
}

TEST(OpticalTremoloCell, SoundsTheSameInBlocksOfAnyLength) {
    const auto cell = flagshipCell(1.0f, 1.0f);
    const std::vector<float> expected = gainsOf(*cell, 1000);
    for (const int length : {1, 7, 100}) {
        OpticalTremoloCell other(length, kRate, OpticalTremoloCell::kArvelReverb65Ranges);
        other.setSpeed(1.0f, true);
        other.setIntensity(1.0f, true);
        std::vector<float> block(static_cast<size_t>(length));
        for (size_t start = 0; start + block.size() <= expected.size(); start += block.size()) {
            other.gains(block.data());
            for (size_t n = 0; n < block.size(); ++n)
                ASSERT_NEAR(block[n], expected[start + n], 5e-5f) << length << ", " << start + n;
        }
    }
}

}  // namespace
