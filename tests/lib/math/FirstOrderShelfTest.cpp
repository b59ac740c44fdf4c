#include <gtest/gtest.h>
#include <thread>

#include "LogCapture.h"
#include "Response.h"
#include "math/FirstOrderShelf.h"

namespace {

using response::Complex;

constexpr double kRate = 44100.0;
constexpr int kLength = 1 << 13;

double amplitude(double db) {
    return std::pow(10.0, db / 20.0);
}

std::vector<float> impulse(FirstOrderShelf& shelf) {
    return response::impulse<float>(kLength, [&](float* buffer, int) { shelf.process(buffer); });
}

TEST(FirstOrderShelfTest, EqualsTheAnaloguePrototypeAtEveryFrequency) {
    for (const double corner : {200.0, 3000.0, 7250.0, 20000.0}) {
        for (const double lowDb : {-12.0, 0.0, 6.0}) {
            for (const double highDb : {-20.0, 0.0, 5.0, 14.0}) {
                FirstOrderShelf shelf(kLength, kRate, static_cast<float>(lowDb), static_cast<float>(highDb),
                                      static_cast<float>(corner));
                const std::vector<float> h = impulse(shelf);
                const double gl = amplitude(lowDb);
                const double gh = amplitude(highDb);
                for (double f = 5.0; f < 22000.0; f *= 1.2) {
                    const Complex s = response::prototypeS(f, corner, kRate);
                    const Complex expected = (s * gh + std::sqrt(gl * gh)) / (s + std::sqrt(gh / gl));
                    ASSERT_LE(std::abs(response::transform(h, f, kRate) - expected), 1e-4 * std::max(gl, gh))
                        << f << " Hz, corner " << corner << ", " << lowDb << " and " << highDb << " dB";
                }
            }
        }
    }
}

TEST(FirstOrderShelfTest, IsLowGainAtDcHighGainAtTheTopAndTheirMeanAtTheCorner) {
    FirstOrderShelf shelf(kLength, kRate, -6.0f, 12.0f, 3000.0f);
    const std::vector<float> h = impulse(shelf);
    const auto gainDb = [&](double f) {
        return 20.0 * std::log10(std::abs(response::transform(h, f, kRate)));
    };
    EXPECT_NEAR(gainDb(0.0), -6.0, 1e-3);
    EXPECT_NEAR(gainDb(3000.0), 3.0, 1e-3);
    EXPECT_NEAR(gainDb(22050.0), 12.0, 1e-3);
}

TEST(FirstOrderShelfTest, EqualGainsAreAPlainGain) {
    FirstOrderShelf shelf(30, kRate, 6.0f, 6.0f, 7250.0f);
    std::vector<float> block(30);
    for (int n = 0; n < 30; ++n)
        block[static_cast<size_t>(n)] = std::sin(0.9f * static_cast<float>(n * n));
    const std::vector<float> input = block;
    shelf.process(block.data());
    for (size_t n = 0; n < block.size(); ++n)
        EXPECT_NEAR(block[n], amplitude(6.0) * input[n], 1e-5);
}

TEST(FirstOrderShelfTest, AChangeKeepsTheState) {
    FirstOrderShelf shelf(5, kRate, 0.0f, 0.0f, 1000.0f);
    FirstOrderShelf fresh(5, kRate, 0.0f, 12.0f, 1000.0f);
    std::vector<float> block(5, 1.0f);
    std::vector<float> other(5, 1.0f);
    for (int i = 0; i < 400; ++i) {
        block.assign(5, 1.0f);
        shelf.process(block.data());
        other.assign(5, 1.0f);
        fresh.process(other.data());
    }
    shelf.setHighGainDb(12.0f);
    // Both stand at DC gain 1, so from here on they are the same filter in the same state.
    for (int i = 0; i < 50; ++i) {
        for (size_t n = 0; n < 5; ++n)
            block[n] = other[n] = static_cast<float>((i * 5 + static_cast<int>(n)) % 3);
        shelf.process(block.data());
        fresh.process(other.data());
        for (size_t n = 0; n < 5; ++n)
            ASSERT_NEAR(block[n], other[n], 1e-4);
    }
    shelf.clear();
    block.assign(5, 0.0f);
    shelf.process(block.data());
    EXPECT_EQ(block, std::vector<float>(5, 0.0f));
}

TEST(FirstOrderShelfTest, SettersMoveOneParameterEach) {
    FirstOrderShelf set(kLength, kRate, -3.0f, 0.0f, 100.0f);
    set.setHighGainDb(9.0f);
    set.setCornerHz(2500.0f);
    FirstOrderShelf built(kLength, kRate, -3.0f, 9.0f, 2500.0f);
    EXPECT_EQ(impulse(set), impulse(built));
}

TEST(FirstOrderShelfTest, TellsItsParametersAndCoefficients) {
    LogCapture log;
    tvk::log::enableDebug(true);
    const FirstOrderShelf shelf(32, kRate, 0.0f, 5.0f, 5000.0f);
    const double t = std::tan(std::numbers::pi * 5000.0 / kRate);
    const double q = std::sqrt(amplitude(5.0));
    const double b0 = (q + t) * std::sqrt(amplitude(5.0)) / (q * t + 1.0);
    char text[100];
    std::snprintf(text, sizeof text, "FirstOrderShelf: b0,b1=%f %f, a0 a1=%f %f", b0,
                  b0 * (t / q - 1.0) / (t / q + 1.0), 1.0, (q * t - 1.0) / (q * t + 1.0));
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"FirstOrderShelf: setAllParameters(0.0, 5.0, 5000.0)", text}));
}

TEST(FirstOrderShelfTest, ACornerPastHalfTheRateIsTruncatedAndStaysStable) {
    LogCapture log;
    FirstOrderShelf shelf(kLength, kRate, 0.0f, 12.0f, 30000.0f);
    EXPECT_EQ(log.count("Warn truncating freqHz=30000.000000Hz to 21829.500000Hz"), 1);
    const std::vector<float> h = impulse(shelf);
    EXPECT_NEAR(std::abs(response::transform(h, 0.0, kRate)), 1.0, 1e-4);
}

// At equal gains b1 = b0 a1 whatever the corner: a whole set of coefficients is a plain gain, a torn one is
// not.
TEST(FirstOrderShelfTest, ASetterOnAnotherThreadIsSeenWhole) {
    FirstOrderShelf shelf(32, kRate, 0.0f, 0.0f, 1000.0f);
    std::thread setter([&] {
        for (int i = 0; i < 10000; ++i)
            shelf.setCornerHz(i % 2 ? 50.0f : 18000.0f);
    });
    float worst = 0.0f;
    for (int i = 0; i < 4000; ++i) {
        float block[32];
        for (int n = 0; n < 32; ++n)
            block[n] = static_cast<float>((i + n) % 5) - 2.0f;
        shelf.process(block);
        for (int n = 0; n < 32; ++n) {
            worst = std::max(worst, std::abs(block[n] - (static_cast<float>((i + n) % 5) - 2.0f)));
        }
    }
    setter.join();
    EXPECT_LT(worst, 1e-2f);
}

}  // namespace
