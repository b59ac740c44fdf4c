#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>

#include "LogCapture.h"
#include "Response.h"
#include "math/BqBandPass.h"
#include "math/BqHighShelf.h"
#include "math/BqHpf.h"
#include "math/BqLowShelf.h"
#include "math/BqLpf.h"
#include "math/BqPeak.h"
#include "math/BqPeak2.h"
#include "math/BqPeakProportionalQ.h"

namespace {

using response::Complex;

constexpr double kRate = 44100.0;

double amplitude(double db) {
    return std::pow(10.0, db / 20.0);
}

// A shelf's quality factor for a slope, from the cookbook; a negative radicand counts as 0.
double shelfQ(double gainDb, double slope) {
    const double a = std::sqrt(amplitude(gainDb));
    return 1.0 / std::sqrt(std::max((a + 1.0 / a) * (1.0 / slope - 1.0) + 2.0, 1e-30));
}

// One class of filter beside the analogue prototype that it must equal under the bilinear transform.
struct Kind {
    std::string name;
    std::function<Complex(Complex s, double gainDb, double q)> prototype;
    // The impulse response of a new filter, n samples.
    std::function<std::vector<double>(double gainDb, double freqHz, double q, int n)> impulse;
    double tolerance;  // of the response, relative to its largest magnitude
};

template <typename Filter, typename T>
Kind kind(const std::string& name, std::function<Complex(Complex, double, double)> prototype) {
    Kind made;
    made.name = name;
    made.prototype = std::move(prototype);
    made.impulse = [](double gainDb, double freqHz, double q, int n) {
        Filter filter(static_cast<T>(gainDb), static_cast<T>(freqHz), static_cast<T>(q),
                      static_cast<T>(kRate));
        const std::vector<T> h =
            response::impulse<T>(n, [&](T* buffer, int count) { filter.process(buffer, count); });
        return std::vector<double>(h.begin(), h.end());
    };
    made.tolerance = std::is_same_v<T, float> ? 1e-3 : 1e-6;
    return made;
}

Complex bellPrototype(Complex s, double gainDb, double q) {
    return response::bell(s, q, amplitude(gainDb));
}

Complex bell2Prototype(Complex s, double gainDb, double q) {
    return (s * s + amplitude(gainDb) * s / q + 1.0) / (s * s + s / q + 1.0);
}

Complex lowShelfPrototype(Complex s, double gainDb, double q) {
    return response::lowShelf(s, shelfQ(gainDb, q / 4.0), amplitude(gainDb));
}

void PrintTo(const Kind& tested, std::ostream* out) {
    *out << tested.name;
}

const std::vector<Kind>& kinds() {
    static const std::vector<Kind> all = {
        kind<BqLpf, float>("BqLpf", [](Complex s, double gainDb,
                                       double q) { return amplitude(gainDb) * response::lowPass(s, q); }),
        kind<BqHpf, float>("BqHpf", [](Complex s, double gainDb,
                                       double q) { return amplitude(gainDb) * response::highPass(s, q); }),
        kind<BqBandPass, float>(
            "BqBandPass",
            [](Complex s, double gainDb, double q) { return amplitude(gainDb) * response::bandPass(s, q); }),
        kind<BqPeak, float>("BqPeak", bellPrototype),
        kind<BqPeakDouble, double>("BqPeakDouble", bellPrototype),
        kind<BqPeakProportionalQ, float>("BqPeakProportionalQ",
                                         [](Complex s, double gainDb, double q) {
                                             const double x = std::abs(gainDb) / 40.0;
                                             const double k = x > 0.01 ? std::sqrt(1.0 - std::pow(100.0, -x))
                                                                       : 0.21214949367192157;
                                             return response::bell(s, q * k, amplitude(gainDb));
                                         }),
        kind<BqPeak2, float>("BqPeak2", bell2Prototype),
        kind<BqPeak2Double, double>("BqPeak2Double", bell2Prototype),
        kind<BqLowShelf, float>("BqLowShelf", lowShelfPrototype),
        kind<BqLowShelfDouble, double>("BqLowShelfDouble", lowShelfPrototype),
        kind<BqHighShelf, float>("BqHighShelf",
                                 [](Complex s, double gainDb, double q) {
                                     return response::highShelf(s, shelfQ(gainDb, q / 4.0),
                                                                amplitude(gainDb));
                                 }),
    };
    return all;
}

class BiquadResponseTest : public testing::TestWithParam<Kind> {};

TEST_P(BiquadResponseTest, EqualsTheAnaloguePrototypeAtEveryFrequency) {
    const Kind& tested = GetParam();
    for (const double freqHz : {150.0, 1000.0, 6000.0, 15000.0}) {
        for (const double gainDb : {-18.0, -0.3, 0.0, 6.0, 15.0}) {
            for (const double q : {0.4, 0.707, 3.0}) {
                const std::vector<double> h =
                    tested.impulse(gainDb, freqHz, q, freqHz < 500.0 ? 1 << 14 : 1 << 12);
                double largest = 1.0;
                for (double f = 10.0; f < 22000.0; f *= 1.15) {
                    const Complex expected =
                        tested.prototype(response::prototypeS(f, freqHz, kRate), gainDb, q);
                    largest = std::max(largest, std::abs(expected));
                    ASSERT_LE(std::abs(response::transform(h, f, kRate) - expected),
                              tested.tolerance * largest)
                        << f << " Hz of a filter at " << freqHz << " Hz, " << gainDb << " dB, q " << q;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, BiquadResponseTest, testing::ValuesIn(kinds()),
                         [](const testing::TestParamInfo<Kind>& tested) { return tested.param.name; });

template <typename T>
void expectSameCoefficients(const BiquadCoefficients<T>& left, const BiquadCoefficients<T>& right) {
    EXPECT_EQ(left.a1, right.a1);
    EXPECT_EQ(left.a2, right.a2);
    EXPECT_EQ(left.b0, right.b0);
    EXPECT_EQ(left.b1, right.b1);
    EXPECT_EQ(left.b2, right.b2);
}

template <typename Filter>
class BiquadSetterTest : public testing::Test {};
using AllFilters = testing::Types<BqLpf, BqHpf, BqBandPass, BqPeak, BqPeakDouble, BqPeakProportionalQ,
                                  BqPeak2, BqPeak2Double, BqLowShelf, BqLowShelfDouble, BqHighShelf>;
TYPED_TEST_SUITE(BiquadSetterTest, AllFilters);

TYPED_TEST(BiquadSetterTest, SettersInAnyOrderReachWhatTheConstructorDesigns) {
    const TypeParam built(6, 2000, 1.5, 48000);
    TypeParam set(0, 500, 0.7, 48000);
    set.setQ(1.5);
    set.setFrequency(2000);
    set.setGainDb(6);
    expectSameCoefficients(set.coefficients(), built.coefficients());

    TypeParam setAtOnce(-3, 100, 9, 48000);
    setAtOnce.setAll(6, 2000, 1.5);
    expectSameCoefficients(setAtOnce.coefficients(), built.coefficients());
}

TYPED_TEST(BiquadSetterTest, TheLinearGainIsTheOneThatIsStored) {
    TypeParam filter(-9, 2000, 1.5, 48000);
    const TypeParam boosted(12, 2000, 1.5, 48000);
    const double gain = boosted.gain();
    filter.setGainLinear(gain);
    EXPECT_NEAR(filter.gainDb(), 12.0, 1e-5);
    EXPECT_NEAR(filter.coefficients().b0, boosted.coefficients().b0, 1e-6);
    EXPECT_NEAR(filter.coefficients().a2, boosted.coefficients().a2, 1e-6);
}

TYPED_TEST(BiquadSetterTest, ACoefficientChangeKeepsTheState) {
    TypeParam filter(6, 2000, 1.5, 48000);
    for (int i = 0; i < 10; ++i)
        filter.process(1);
    const auto before = filter.state();
    ASSERT_NE(before.w1, 0);
    filter.setAll(-6, 300, 0.9);
    EXPECT_EQ(filter.state().w1, before.w1);
    EXPECT_EQ(filter.state().w2, before.w2);
    // The new coefficients hold from the next sample on, over the old state.
    const auto c = filter.coefficients();
    const double w = 1.0 - static_cast<double>(c.a1) * before.w1 - static_cast<double>(c.a2) * before.w2;
    const double y = c.b0 * w + static_cast<double>(c.b1) * before.w1 + static_cast<double>(c.b2) * before.w2;
    EXPECT_NEAR(filter.process(1), y, 1e-5 * (1.0 + std::abs(before.w1)));
}

TYPED_TEST(BiquadSetterTest, ClearZeroesTheStateAndKeepsTheCoefficients) {
    TypeParam filter(6, 2000, 1.5, 48000);
    const auto first = filter.process(1);
    filter.process(1);
    filter.clear();
    EXPECT_EQ(filter.state().w1, 0);
    EXPECT_EQ(filter.state().w2, 0);
    EXPECT_EQ(filter.process(1), first);
}

TYPED_TEST(BiquadSetterTest, SamplesAndBlocksGiveTheSameSignal) {
    TypeParam bySample(6, 2000, 1.5, 48000);
    TypeParam byBlock(6, 2000, 1.5, 48000);
    using T = decltype(bySample.process(0));
    std::vector<T> block(67);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<T>(std::sin(0.3 * static_cast<double>(i * i)));
    std::vector<T> samples = block;
    for (T& x : samples)
        x = bySample.process(x);
    byBlock.process(block.data(), static_cast<int>(block.size()));
    EXPECT_EQ(samples, block);
}

TYPED_TEST(BiquadSetterTest, HalfTheRateIsTruncatedWithOneWarning) {
    LogCapture log;
    const TypeParam filter(3, 22050, 1, 44100);
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"Warn truncating freqHz=22050.000000Hz to 21829.500000Hz"});
    EXPECT_NEAR(filter.w0(), 2.0 * std::numbers::pi * 0.495, 1e-6);
}

TYPED_TEST(BiquadSetterTest, JustBelowHalfTheRateIsKept) {
    LogCapture log;
    const TypeParam filter(3, 22049, 1, 44100);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_NEAR(filter.w0(), 2.0 * std::numbers::pi * 22049.0 / 44100.0, 1e-6);
}

TYPED_TEST(BiquadSetterTest, AnImpossibleQIsAnErrorAndReplaced) {
    LogCapture log;
    TypeParam filter(3, 1000, 0, 44100);
    const TypeParam usual(3, 1000, 0.707, 44100);
    EXPECT_NEAR(filter.q(), usual.q(), 1e-7);
    filter.setQ(-1);
    const TypeParam one(3, 1000, 1, 44100);
    EXPECT_EQ(filter.q(), one.q());
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_NE(log.lines()[0].find(" Invalid Q Argument: 0.000000\n"), std::string::npos);
    EXPECT_NE(log.lines()[1].find(" Invalid Q Argument: -1.000000\n"), std::string::npos);
}

TYPED_TEST(BiquadSetterTest, AnImpossibleRateIsAnErrorAndTheFilterStaysUsable) {
    LogCapture log;
    TypeParam filter(3, 1000, 1, 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find(" Invalid Fs Argument: 0.000000\n"), std::string::npos);
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(std::isfinite(filter.process(1)));
}

TEST(BqPeakProportionalQTest, AFlatSettingUsesTheNarrowestBandwidthAndIsAWire) {
    BqPeakProportionalQ filter(0.0f, 1000.0f, 2.0f, 44100.0f);
    const double w0 = 2.0 * std::numbers::pi * 1000.0 / 44100.0;
    const double alpha = std::sin(w0) / (2.0 * 2.0 * 0.21214949367192157);
    EXPECT_NEAR(filter.coefficients().a2, (1.0 - alpha) / (1.0 + alpha), 1e-6);
    EXPECT_NEAR(filter.coefficients().b2, filter.coefficients().a2, 1e-7);
    for (int i = 0; i < 50; ++i)
        EXPECT_NEAR(filter.process(static_cast<float>(i % 7)), i % 7, 1e-4);
}

TEST(BqPeakProportionalQTest, TheLinearGainFindsItsDecibels) {
    BqPeakProportionalQ filter(0.0f, 1000.0f, 2.0f, 44100.0f);
    filter.setGainLinear(2.0f);
    EXPECT_NEAR(filter.gainDb(), 40.0 * std::log10(2.0), 1e-6);
    const double k = std::sqrt(1.0 - std::pow(100.0, -std::log10(2.0)));
    const double w0 = 2.0 * std::numbers::pi * 1000.0 / 44100.0;
    const double alpha = std::sin(w0) / (2.0 * 2.0 * k);
    EXPECT_NEAR(filter.coefficients().a2, (1.0 - alpha / 2.0) / (1.0 + alpha / 2.0), 1e-6);
}

TEST(BqShelfTest, TheSlopeIsScaledOnceHoweverOftenTheFilterIsSet) {
    BqHighShelf high(6.0f, 1000.0f, 2.0f, 44100.0f);
    BqLowShelf low(6.0f, 1000.0f, 2.0f, 44100.0f);
    for (int i = 0; i < 3; ++i) {
        high.setGainDb(static_cast<float>(i));
        high.setFrequency(500.0f);
        low.setGainDb(static_cast<float>(i));
        low.setFrequency(500.0f);
    }
    EXPECT_EQ(high.q(), 0.5);
    EXPECT_EQ(low.q(), 0.5);
    expectSameCoefficients(high.coefficients(), BqHighShelf(2.0f, 500.0f, 2.0f, 44100.0f).coefficients());
    expectSameCoefficients(low.coefficients(), BqLowShelf(2.0f, 500.0f, 2.0f, 44100.0f).coefficients());
}

// With A = 4 and S = 10 the radicand A ((A + 1/A)(1/S - 1) + 2) is negative, so beta is 0.
TEST(BqShelfTest, ANegativeRadicandCountsAsZero) {
    const float gainDb = static_cast<float>(40.0 * std::log10(4.0));
    const double a = 4.0;
    const double c = std::cos(2.0 * std::numbers::pi * 1000.0 / 44100.0);
    const BqLowShelf low(gainDb, 1000.0f, 40.0f, 44100.0f);
    EXPECT_NEAR(low.coefficients().a2, 1.0, 1e-6);
    EXPECT_NEAR(low.coefficients().b0, a * (5.0 - 3.0 * c) / (5.0 + 3.0 * c), 1e-5);
    const BqHighShelf high(gainDb, 1000.0f, 40.0f, 44100.0f);
    EXPECT_NEAR(high.coefficients().a2, 1.0, 1e-6);
    EXPECT_NEAR(high.coefficients().b0, a * (5.0 + 3.0 * c) / (5.0 - 3.0 * c), 1e-4);
}

// Every value a reader may see is one of two sound designs, so a torn set shows as an output outside both.
TEST(BiquadConcurrencyTest, ASetterOnAnotherThreadIsSeenWholeOrNotAtAll) {
    BqPeak2 filter(0.0f, 1000.0f, 1.0f, 44100.0f);
    constexpr int kChanges = 20000;
    std::thread setter([&] {
        for (int i = 0; i < kChanges; ++i)
            filter.setAll(0.0f, i % 2 ? 9000.0f : 13000.0f, i % 3 ? 0.5f : 0.7f);
    });
    // At 0 dB numerator and denominator agree: whichever design holds, and whatever the state, the filter is
    // a wire. A mixture of two designs is not. The poles lie so near to the origin that no sequence of
    // changes makes the state large, and with it the rounding.
    float worst = 0.0f;
    for (int i = 0; i < 4000; ++i) {
        float block[32];
        for (int n = 0; n < 32; ++n)
            block[n] = static_cast<float>((i + n) % 5) - 2.0f;
        filter.process(block, 32);
        for (int n = 0; n < 32; ++n) {
            worst = std::max(worst, std::abs(block[n] - (static_cast<float>((i + n) % 5) - 2.0f)));
        }
    }
    setter.join();
    EXPECT_LT(worst, 1e-5f);
}

}  // namespace
