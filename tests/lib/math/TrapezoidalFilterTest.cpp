#include <functional>
#include <gtest/gtest.h>
#include <thread>

#include "LogCapture.h"
#include "Response.h"
#include "math/SVBell.h"
#include "math/SVHighShelf.h"
#include "math/SVHpf.h"
#include "math/SVLowShelf.h"
#include "math/SVLpf.h"
#include "math/TrapezoidalFilter.h"

namespace {

using response::Complex;

constexpr double kRate = 44100.0;

double amplitude(double db) {
    return std::pow(10.0, db / 20.0);
}

struct Kind {
    std::string name;
    std::function<Complex(Complex s, double gainDb, double q)> prototype;
    std::function<std::vector<float>(float gainDb, float freqHz, float q, int n)> impulse;
};

template <typename Filter>
Kind kind(const std::string& name, std::function<Complex(Complex, double, double)> prototype) {
    return {name, std::move(prototype), [](float gainDb, float freqHz, float q, int n) {
                Filter filter(gainDb, freqHz, q, static_cast<float>(kRate));
                return response::impulse<float>(n, [&](float* b, int count) { filter.process(b, count); });
            }};
}

void PrintTo(const Kind& tested, std::ostream* out) {
    *out << tested.name;
}

const std::vector<Kind>& kinds() {
    static const std::vector<Kind> all = {
        kind<SVLpf>("SVLpf", [](Complex s, double, double q) { return response::lowPass(s, q); }),
        kind<SVHpf>("SVHpf", [](Complex s, double, double q) { return response::highPass(s, q); }),
        kind<SVBell>("SVBell", [](Complex s, double gainDb,
                                  double q) { return response::bell(s, q, amplitude(gainDb)); }),
        kind<SVLowShelf>("SVLowShelf", [](Complex s, double gainDb,
                                          double q) { return response::lowShelf(s, q, amplitude(gainDb)); }),
        kind<SVHighShelf>(
            "SVHighShelf",
            [](Complex s, double gainDb, double q) { return response::highShelf(s, q, amplitude(gainDb)); }),
    };
    return all;
}

class TrapezoidalResponseTest : public testing::TestWithParam<Kind> {};

TEST_P(TrapezoidalResponseTest, EqualsTheAnaloguePrototypeAtEveryFrequency) {
    const Kind& tested = GetParam();
    for (const double freqHz : {60.0, 1000.0, 6000.0, 18000.0}) {
        for (const double gainDb : {-18.0, 0.0, 6.0, 15.0}) {
            for (const double q : {0.4, 0.707, 3.0}) {
                const std::vector<float> h =
                    tested.impulse(static_cast<float>(gainDb), static_cast<float>(freqHz),
                                   static_cast<float>(q), freqHz < 500.0 ? 1 << 14 : 1 << 12);
                double largest = 1.0;
                for (double f = 10.0; f < 22000.0; f *= 1.15) {
                    const Complex expected =
                        tested.prototype(response::prototypeS(f, freqHz, kRate), gainDb, q);
                    largest = std::max(largest, std::abs(expected));
                    ASSERT_LE(std::abs(response::transform(h, f, kRate) - expected), 1e-4 * largest)
                        << f << " Hz of a filter at " << freqHz << " Hz, " << gainDb << " dB, q " << q;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, TrapezoidalResponseTest, testing::ValuesIn(kinds()),
                         [](const testing::TestParamInfo<Kind>& tested) { return tested.param.name; });

void expectSameCoefficients(const TrapezoidalCoefficients& left, const TrapezoidalCoefficients& right) {
    EXPECT_EQ(left.a1, right.a1);
    EXPECT_EQ(left.a2, right.a2);
    EXPECT_EQ(left.a3, right.a3);
    EXPECT_EQ(left.m0, right.m0);
    EXPECT_EQ(left.m1, right.m1);
    EXPECT_EQ(left.m2, right.m2);
}

template <typename Filter>
class TrapezoidalSetterTest : public testing::Test {};
using AllFilters = testing::Types<SVLpf, SVHpf, SVBell, SVLowShelf, SVHighShelf>;
TYPED_TEST_SUITE(TrapezoidalSetterTest, AllFilters);

TYPED_TEST(TrapezoidalSetterTest, SettersReachWhatTheConstructorDesigns) {
    const TypeParam built(6.0f, 2000.0f, 1.5f, 48000.0f);
    TypeParam set(6.0f, 500.0f, 0.7f, 48000.0f);
    set.setQ(1.5f);
    set.setFrequency(2000.0f);
    expectSameCoefficients(set.coefficients(), built.coefficients());
    TypeParam setAtOnce(-3.0f, 100.0f, 9.0f, 48000.0f);
    setAtOnce.setAll(6.0f, 2000.0f, 1.5f);
    expectSameCoefficients(setAtOnce.coefficients(), built.coefficients());
}

TYPED_TEST(TrapezoidalSetterTest, AChangeKeepsTheState) {
    TypeParam filter(6.0f, 2000.0f, 1.5f, 48000.0f);
    filter.process(1.0f);
    const TrapezoidalState before = filter.state();
    ASSERT_NE(before.ic1, 0.0f);
    filter.setAll(-6.0f, 300.0f, 0.9f);
    EXPECT_EQ(filter.state().ic1, before.ic1);
    EXPECT_EQ(filter.state().ic2, before.ic2);
}

TYPED_TEST(TrapezoidalSetterTest, FrequenciesStopJustBelowHalfTheRate) {
    for (const float freqHz : {21900.0f, 22050.0f, 1e9f, std::nanf("")}) {
        TypeParam filter(6.0f, freqHz, 0.7f, 44100.0f);
        EXPECT_FLOAT_EQ(filter.freqHz(), 44100.0f * 0.495f) << freqHz;
        for (int i = 0; i < 1000; ++i)
            ASSERT_LT(std::abs(filter.process(i % 2 ? 1.0f : -1.0f)), 10.0f);
    }
    TypeParam filter(6.0f, 21800.0f, 0.7f, 44100.0f);
    EXPECT_EQ(filter.freqHz(), 21800.0f);
}

TYPED_TEST(TrapezoidalSetterTest, AnImpossibleQIsAnErrorAndReplaced) {
    LogCapture log;
    TypeParam filter(6.0f, 1000.0f, 0.0f, 44100.0f);
    EXPECT_EQ(filter.q(), 0.707f);
    filter.setQ(0.0f);
    EXPECT_EQ(filter.q(), 1.0f);
    EXPECT_EQ(log.lines().size(), 2u);
    for (const std::string& line : log.lines()) {
        EXPECT_NE(line.find(" Invalid Q Argument: 0.000000\n"), std::string::npos) << line;
    }
}

TYPED_TEST(TrapezoidalSetterTest, AnImpossibleRateIsAnErrorAndTheFilterStaysUsable) {
    LogCapture log;
    TypeParam filter(6.0f, 1000.0f, 1.0f, -1.0f);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find(" Invalid Fs Argument: -1.000000\n"), std::string::npos);
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(std::isfinite(filter.process(1.0f)));
}

TYPED_TEST(TrapezoidalSetterTest, SamplesAndBlocksGiveTheSameSignalAndClearStartsAnew) {
    TypeParam filter(6.0f, 1000.0f, 1.0f, 44100.0f);
    std::vector<float> block(41);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = std::sin(0.3f * static_cast<float>(i * i));
    std::vector<float> samples = block;
    for (float& x : samples)
        x = filter.process(x);
    filter.clear();
    filter.process(block.data(), static_cast<int>(block.size()));
    for (size_t i = 0; i < block.size(); ++i)
        EXPECT_NEAR(block[i], samples[i], 1e-6);
}

TEST(SVFilterNamesTest, ErrorLinesNameTheirClass) {
    LogCapture log;
    const SVLpf lpf(0.0f, 1000.0f, -2.0f, 44100.0f);
    const SVHighShelf shelf(0.0f, 1000.0f, 1.0f, 0.0f);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"Error SVLpf Invalid Q Argument: -2.000000\n",
                                                     "Error SVHighShelf Invalid Fs Argument: 0.000000\n"}));
}

TEST(SVLpfTest, PassAndStopFiltersIgnoreTheGain) {
    expectSameCoefficients(SVLpf(12.0f, 900.0f, 1.0f, 44100.0f).coefficients(),
                           SVLpf(0.0f, 900.0f, 1.0f, 44100.0f).coefficients());
    expectSameCoefficients(SVHpf(-12.0f, 900.0f, 1.0f, 44100.0f).coefficients(),
                           SVHpf(0.0f, 900.0f, 1.0f, 44100.0f).coefficients());
}

TEST(SVBellTest, AFlatBellIsAWire) {
    SVBell bell(0.0f, 1000.0f, 0.7f, 44100.0f);
    EXPECT_EQ(bell.coefficients().m1, 0.0f);
    for (int i = 0; i < 1000; ++i) {
        const float x = std::sin(0.1f * static_cast<float>(i * i));
        ASSERT_EQ(bell.process(x), x);
    }
}

TEST(SVGainTest, TheGainSetterReachesWhatTheConstructorDesigns) {
    SVBell bell(0.0f, 1000.0f, 0.7f, 44100.0f);
    bell.setGain(9.0f);
    expectSameCoefficients(bell.coefficients(), SVBell(9.0f, 1000.0f, 0.7f, 44100.0f).coefficients());
    SVLowShelf low(0.0f, 1000.0f, 0.7f, 44100.0f);
    low.setGainLinear(static_cast<float>(std::pow(10.0, 9.0 / 40.0)));
    expectSameCoefficients(low.coefficients(), SVLowShelf(9.0f, 1000.0f, 0.7f, 44100.0f).coefficients());
}

// A constant through a low shelf: the output must go from the old DC gain to the new one and never leave the
// way between them by more than the ringing of a second-order step of q 0.707 (4.4 per cent).
TEST(SVLowShelfTest, AGainChangeGivesNoStepBeyondTheNewResponse) {
    SVLowShelf shelf(0.0f, 500.0f, 0.707f, 44100.0f);
    for (int i = 0; i < 5000; ++i)
        shelf.process(1.0f);
    for (const float gainDb : {12.0f, -12.0f, 3.0f, 0.0f}) {
        const double before = shelf.process(1.0f);
        const double after = amplitude(gainDb);
        shelf.setGain(gainDb);
        const double slack = 0.06 * std::abs(after - before) + 1e-4;
        for (int i = 0; i < 5000; ++i) {
            const double y = shelf.process(1.0f);
            ASSERT_GE(y, std::min(before, after) - slack) << i << " of " << gainDb;
            ASSERT_LE(y, std::max(before, after) + slack) << i << " of " << gainDb;
        }
        EXPECT_NEAR(shelf.process(1.0f), after, 1e-3);
    }
}

// In a settled constant the integrators stand at 0 and x for every design, and a high shelf gives m0 + m2 =
// 1: A^2 of one set beside 1 - A^2 of another would show as 10 or -8.
TEST(TrapezoidalConcurrencyTest, ASetterOnAnotherThreadIsSeenWhole) {
    SVHighShelf shelf(0.0f, 1000.0f, 0.5f, 44100.0f);
    for (int i = 0; i < 20000; ++i)
        shelf.process(1.0f);
    std::thread setter([&] {
        for (int i = 0; i < 20000; ++i)
            shelf.setAll(i % 2 ? 0.0f : 20.0f, i % 3 ? 10000.0f : 50.0f, 0.5f);
    });
    float worst = 0.0f;
    for (int i = 0; i < 4000; ++i) {
        float block[32];
        std::fill_n(block, 32, 1.0f);
        shelf.process(block, 32);
        for (const float y : block)
            worst = std::max(worst, std::abs(y - 1.0f));
    }
    setter.join();
    EXPECT_LT(worst, 1e-2f);
}

}  // namespace
