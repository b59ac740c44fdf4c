#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "math/LfoAbsSine.h"
#include "math/LfoPWM.h"
#include "math/LfoSawtooth.h"
#include "math/LfoSine.h"
#include "math/LfoSineAccurate.h"
#include "math/LfoSineSync.h"
#include "math/LfoSquareSync.h"
#include "math/LfoTriangle.h"
#include "math/SteppedLFO.h"

namespace {

constexpr float kRate = 48000.0f;
constexpr float kHz = 48.0f;  // a period of 1000 samples
constexpr double kPi = std::numbers::pi;

// What half a step of the phase increment, a 2^32nd of a cycle, adds up to in 20000 samples.
constexpr double kSinePhase = 2.0 * kPi * 20000.0 * 0.5 / 4294967296.0 + 2e-6;

std::vector<float> ticks(Lfo& lfo, int count) {
    std::vector<float> values(static_cast<size_t>(count));
    for (float& value : values)
        value = lfo.tick();
    return values;
}

// The parabolic sine of a phase in cycles.
double bentSine(double cycles) {
    const double p = 2.0 * kPi * (cycles - std::floor(cycles + 0.5));
    const double y = 1.2732395 * p - 0.40528473 * p * std::fabs(p);
    const double sign = p < 0.0 ? -1.0 : 1.0;
    return (0.77633023 + sign * 0.2230851 * y) * y;
}

// A triangle of a phase in cycles, -1 at 0.
double triangleAt(double cycles) {
    const double x = cycles - std::floor(cycles);
    return 1.0 - 4.0 * std::fabs(x - 0.5);
}

// What every oscillator of the family owes.

struct Kind {
    std::string name;
    std::function<std::unique_ptr<Lfo>(float hz)> make;
    float lowest;  // of the shape
    friend void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }
};

template <typename T>
Kind kind(const char* name, float lowest = -1.0f) {
    return {name, [](float hz) { return std::make_unique<T>(hz, kRate); }, lowest};
}

class EveryLfo : public testing::TestWithParam<Kind> {
protected:
    static std::unique_ptr<Lfo> make(float hz) { return GetParam().make(hz); }
};

TEST_P(EveryLfo, ClampsAFrequencyAboveHalfTheSampleRate) {
    const auto lfo = make(1.0f);
    lfo->setFrequency(30000.0f);
    EXPECT_EQ(lfo->frequency(), 24000.0f);
    const auto atHalf = make(1.0f);
    atHalf->setFrequency(24000.0f);
    EXPECT_EQ(ticks(*lfo, 100), ticks(*atHalf, 100));
}

TEST_P(EveryLfo, RunsAFrequencyOfZeroAtAThousandthOfAHertz) {
    const auto lfo = make(0.0f);
    EXPECT_EQ(lfo->frequency(), 0.001f);
    lfo->setFrequency(5.0f);
    lfo->setFrequency(0.0f);
    EXPECT_EQ(lfo->frequency(), 0.001f);
    lfo->setFrequency(-3.0f);
    EXPECT_EQ(lfo->frequency(), 0.001f);
}

TEST_P(EveryLfo, RepeatsAfterItsPeriod) {
    const auto lfo = make(kHz);
    const std::vector<float> values = ticks(*lfo, 3000);
    for (size_t n = 0; n < 2000; ++n)
        ASSERT_NEAR(values[n], values[n + 1000], 2e-5f) << n;
}

TEST_P(EveryLfo, SwingsByItsAmplitudeAboutItsOffset) {
    const auto lfo = make(kHz);
    lfo->setAmplitude(0.25f);
    lfo->setOffset(3.0f);
    const std::vector<float> values = ticks(*lfo, 2000);
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    EXPECT_NEAR(*least, 3.0f + 0.25f * GetParam().lowest, 1e-3f);
    EXPECT_NEAR(*most, 3.25f, 1e-3f);
}

TEST_P(EveryLfo, GivesABlockAsItsSingleTicks) {
    for (const float hz : {0.001f, 0.7f, 9.3f, 441.0f, 15000.0f}) {
        const auto single = make(hz);
        const auto blocks = make(hz);
        for (const int count : {1, 7, 8, 32, 33, 100, 500}) {
            std::vector<float> got(static_cast<size_t>(count));
            blocks->tick(got.data(), count);
            const std::vector<float> expected = ticks(*single, count);
            for (size_t n = 0; n < got.size(); ++n)
                ASSERT_NEAR(got[n], expected[n], 1e-6f) << hz << " Hz, " << count << " ticks, " << n;
        }
    }
}

TEST_P(EveryLfo, MovesByTheDifferenceOfTwoPhases) {
    const auto once = make(kHz);
    once->setPhase(0.25f);
    const auto twice = make(kHz);
    twice->setPhase(0.25f);
    twice->setPhase(0.25f);
    EXPECT_EQ(ticks(*once, 1000), ticks(*twice, 1000));

    // On its way, a quarter of a cycle more is 250 samples ahead.
    const auto ahead = make(kHz);
    const auto behind = make(kHz);
    ticks(*ahead, 333);
    ticks(*behind, 333 + 250);
    ahead->setPhase(0.25f);
    const std::vector<float> a = ticks(*ahead, 500);
    const std::vector<float> b = ticks(*behind, 500);
    for (size_t n = 0; n < a.size(); ++n)
        ASSERT_NEAR(a[n], b[n], 2e-5f) << n;
    ahead->setPhase(0.0f);
    ticks(*behind, 1000 - 250);
    EXPECT_NEAR(ahead->tick(), behind->tick(), 2e-5f);
}

TEST_P(EveryLfo, RestartsACycleOnReset) {
    const auto lfo = make(7.0f);
    const std::vector<float> first = ticks(*lfo, 200);
    ticks(*lfo, 12345);
    lfo->reset();
    EXPECT_EQ(ticks(*lfo, 200), first);
}

INSTANTIATE_TEST_SUITE_P(Family, EveryLfo,
                         testing::Values(kind<LfoSine>("Sine"), kind<LfoSineAccurate>("SineAccurate"),
                                         kind<LfoAbsSine>("AbsSine", 0.0f), kind<LfoTriangle>("Triangle"),
                                         kind<SteppedLFO>("Stepped"), kind<LfoPWM>("PWM"),
                                         kind<LfoSawtooth>("Sawtooth"), kind<LfoSineSync>("SineSync"),
                                         kind<LfoSquareSync>("SquareSync")),
                         [](const auto& instance) { return instance.param.name; });

TEST(LfoSine, IsTheBentParabolaOfItsPhase) {
    LfoSine lfo(5.0f, kRate);
    for (int n = 1; n <= 20000; ++n)
        ASSERT_NEAR(lfo.tick(), bentSine(n * 5.0 / 48000.0), kSinePhase) << n;
}

TEST(LfoSine, StaysWithinATenthOfAPerCentOfTheSine) {
    LfoSine lfo(5.0f, kRate);
    for (int n = 1; n <= 20000; ++n)
        ASSERT_NEAR(lfo.tick(), std::sin(2.0 * kPi * n * 5.0 / 48000.0), 1.1e-3) << n;
}

TEST(LfoSine, DoesNotDriftInAQuarterOfAnHour) {
    LfoSine lfo(7.0f, kRate);
    std::vector<float> second(48000);
    for (int i = 0; i < 900; ++i)
        lfo.tick(second.data(), 48000);
    // The increment is a 2^32nd of a cycle at best: 1e-5 Hz, a hundredth of a cycle here.
    EXPECT_NEAR(lfo.tick(), bentSine(7.0 / 48000.0), 2.0 * kPi * 900.0 * 0.5 * 48000.0 / 4294967296.0);
}

TEST(LfoSine, ReturnsToItsPhaseOffsetOnReset) {
    LfoSine lfo(kHz, kRate);
    lfo.setPhase(0.25f);
    ticks(lfo, 777);
    lfo.reset();
    EXPECT_NEAR(lfo.tick(), bentSine(0.25 + 0.001), 2e-6);
}

TEST(LfoSine, TakesAModulatingPhaseSampleBySample) {
    LfoSine scalar(3.0f, kRate);
    LfoSine block(3.0f, kRate);
    std::vector<float> offsets(500);
    for (size_t n = 0; n < offsets.size(); ++n)
        offsets[n] = 0.9f * std::sin(0.01f * static_cast<float>(n)) - 0.5f;
    std::vector<float> got(offsets.size());
    block.tickModulated(offsets.data(), got.data(), 300);
    block.tickModulated(offsets.data() + 300, got.data() + 300, 200);
    for (size_t n = 0; n < offsets.size(); ++n) {
        scalar.setPhase(offsets[n]);
        ASSERT_NEAR(got[n], scalar.tick(), 1e-6f) << n;
        ASSERT_NEAR(got[n], bentSine((n + 1) * 3.0 / 48000.0 + offsets[n]), 3e-6) << n;
    }
}

TEST(LfoSineAccurate, IsTheSine) {
    LfoSineAccurate lfo(5.0f, kRate);
    for (int n = 1; n <= 20000; ++n)
        ASSERT_NEAR(lfo.tick(), std::sin(2.0 * kPi * n * 5.0 / 48000.0), kSinePhase) << n;
}

TEST(LfoAbsSine, IsTheSineWithoutItsSign) {
    LfoSine sine(5.0f, kRate);
    LfoAbsSine folded(5.0f, kRate);
    for (int n = 0; n < 20000; ++n)
        ASSERT_EQ(folded.tick(), std::fabs(sine.tick())) << n;
}

TEST(LfoTriangle, RisesForHalfItsPeriodAndFallsForTheOther) {
    LfoTriangle lfo(7.0f, kRate);
    for (int n = 1; n <= 20000; ++n)
        ASSERT_NEAR(lfo.tick(), triangleAt(n * 7.0 / 48000.0), 1e-6) << n;
}

TEST(LfoTriangle, KeepsItsPlaceWhenTheFrequencyChanges) {
    LfoTriangle lfo(kHz, kRate);
    const std::vector<float> before = ticks(lfo, 300);
    lfo.setFrequency(0.5f * kHz);
    EXPECT_NEAR(lfo.tick(), before.back() + 0.002f, 1e-5f);
}

TEST(LfoTriangle, StillMovesBeyondTwoToThe24thSample) {
    LfoTriangle lfo(0.001f, kRate);
    lfo.setPhase(0.4f);  // 19.2 million samples into the cycle
    const float before = lfo.tick();
    ticks(lfo, 47999);
    EXPECT_NEAR(lfo.tick() - before, 4.0f * 0.001f, 1e-5f);
}

std::set<float> valuesOf(SteppedLFO& lfo, int steps) {
    lfo.setSteps(steps);
    const std::vector<float> values = ticks(lfo, 4000);
    return {values.begin(), values.end()};
}

TEST(SteppedLFO, WithFourStepsVisitsFiveLevelsOnly) {
    SteppedLFO lfo(kHz, kRate);
    lfo.setAmplitude(0.7f);
    EXPECT_EQ(valuesOf(lfo, 4), (std::set<float>{-0.7f, -0.35f, 0.0f, 0.35f, 0.7f}));
}

TEST(SteppedLFO, WithAnOddCountHasALevelAtZeroAndNoneHalfAStepOff) {
    SteppedLFO lfo(kHz, kRate);
    EXPECT_EQ(valuesOf(lfo, 5), (std::set<float>{-1.0f, -0.5f, 0.0f, 0.5f, 1.0f}));
    EXPECT_EQ(valuesOf(lfo, 3), (std::set<float>{-1.0f, 0.0f, 1.0f}));
}

TEST(SteppedLFO, RoundsAnEvenCountUpAndAnOddOneToTheNearest) {
    LfoTriangle triangle(9.0f, kRate);
    SteppedLFO even(9.0f, kRate);
    SteppedLFO odd(9.0f, kRate);
    even.setSteps(6);
    odd.setSteps(7);
    for (int n = 0; n < 5000; ++n) {
        const float t = triangle.tick();
        ASSERT_EQ(even.tick(), std::ceil(t * 3.0f) / 3.0f) << n;
        ASSERT_EQ(odd.tick(), std::round(t * 3.0f) / 3.0f) << n;
    }
}

TEST(SteppedLFO, HasAtLeastTwoSteps) {
    SteppedLFO lfo(kHz, kRate);
    for (const int steps : {1, 0, -5}) {
        EXPECT_EQ(valuesOf(lfo, steps), (std::set<float>{-1.0f, 0.0f, 1.0f})) << steps;
        EXPECT_EQ(lfo.steps(), 2);
    }
}

long highTicks(Lfo& lfo) {
    const std::vector<float> values = ticks(lfo, 10000);
    for (const float value : values)
        EXPECT_TRUE(value == 1.0f || value == -1.0f);
    return std::count(values.begin(), values.end(), 1.0f);
}

TEST(LfoPWM, IsHighWhileTheCounterIsAtOrBelowTheDuty) {
    LfoPWM lfo(kHz, kRate);  // counts 0 to 999
    EXPECT_EQ(highTicks(lfo), 10 * 501);
    lfo.setDuty(0.25f);
    EXPECT_EQ(highTicks(lfo), 10 * 251);
    lfo.setDuty(0.0f);
    EXPECT_EQ(highTicks(lfo), 10);
    lfo.setDuty(1.5f);
    EXPECT_EQ(highTicks(lfo), 10000);
}

TEST(LfoSawtooth, RisesAndFallsByItsSymmetry) {
    for (const double symmetry : {0.1, 0.5, 0.8}) {
        LfoSawtooth lfo(kHz, kRate);
        lfo.setSymmetry(static_cast<float>(symmetry));
        for (int n = 1; n <= 5000; ++n) {
            const double x = n * 0.001 - std::floor(n * 0.001);
            const double expected =
                x < symmetry ? -1.0 + 2.0 * x / symmetry : 1.0 - 2.0 * (x - symmetry) / (1.0 - symmetry);
            ASSERT_NEAR(lfo.tick(), expected, 2e-5) << symmetry << ", " << n;
        }
    }
}

TEST(LfoSawtooth, OnlyFallsAtOneEndAndOnlyRisesAtTheOther) {
    LfoSawtooth lfo(kHz, kRate);
    lfo.setSymmetry(0.0f);
    std::vector<float> values = ticks(lfo, 10000);
    EXPECT_NEAR(std::count_if(values.begin() + 1, values.end(),
                              [&, before = values[0]](float v) mutable {
                                  const bool rises = v > before;
                                  before = v;
                                  return rises;
                              }),
                10, 1);
    lfo.setSymmetry(1.0f);
    values = ticks(lfo, 10000);
    EXPECT_NEAR(std::count_if(values.begin() + 1, values.end(),
                              [&, before = values[0]](float v) mutable {
                                  const bool falls = v < before;
                                  before = v;
                                  return falls;
                              }),
                10, 1);
}

TEST(LfoSineSync, IsTheSineThatStartsAtItsLowestPoint) {
    LfoSineSync lfo(7.0f, kRate);
    for (int n = 1; n <= 20000; ++n)
        ASSERT_NEAR(lfo.tick(), -std::cos(2.0 * kPi * n * 7.0 / 48000.0), 1.1e-3) << n;
}

TEST(LfoSineSync, KeepsItsCountWhenTheFrequencyChanges) {
    LfoSineSync lfo(kHz, kRate);
    ticks(lfo, 300);
    lfo.setFrequency(0.5f * kHz);
    LfoSineSync fresh(0.5f * kHz, kRate);
    ticks(fresh, 300);
    EXPECT_EQ(ticks(lfo, 100), ticks(fresh, 100));
}

TEST(LfoSquareSync, IsHighForTheFirstHalfOfItsCycle) {
    LfoSquareSync lfo(kHz, kRate);
    const std::vector<float> values = ticks(lfo, 2000);
    for (int n = 1; n <= 2000; ++n) {
        const int count = n % 1000;
        ASSERT_EQ(values[static_cast<size_t>(n - 1)], count <= 500 ? 1.0f : -1.0f) << n;
    }
}

TEST(LfoSquareSync, RestartsItsCycleOnATempoBoundary) {
    LfoSquareSync lfo(kHz, kRate);
    ticks(lfo, 700);
    ASSERT_EQ(lfo.tick(), -1.0f);
    lfo.reset();
    EXPECT_EQ(lfo.tick(), 1.0f);
}

}  // namespace
