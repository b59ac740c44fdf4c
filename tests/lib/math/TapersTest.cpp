#include <cmath>
#include <gtest/gtest.h>
#include <type_traits>

#include "LogCapture.h"
#include "math/StandardTaper.h"
#include "math/Tapers.h"

namespace {

// A law by its printed formula, in double precision.
struct Law {
    bool isExponential;
    double base;

    double operator()(double x) const {
        return isExponential ? (std::pow(base, x) - 1.0) / (base - 1.0)
                             : std::log(1.0 + x * (base - 1.0)) / std::log(base);
    }
    double sCurve(double x) const {
        return x >= 0.5 ? 0.5 + 0.5 * (*this)(2.0 * x - 1.0) : 0.5 * (1.0 - (*this)(1.0 - 2.0 * x));
    }
    Law inverse() const { return {!isExponential, base}; }
};

struct Row {
    int percent;
    double base;          // of the plain names
    double reversedBase;  // of the names with r
};

constexpr Row kRows[] = {{5, 361.0, 1048499.0}, {10, 81.0, 1013.99}, {15, 32.111, 94.725},
                         {20, 16.0, 26.61},     {25, 9.0, 11.4445},  {30, 5.44445, 6.05615},
                         {35, 3.44899, 3.5918}, {40, 2.25, 2.27541}, {45, 1.49383, 1.49585}};

struct Named {
    std::string name;
    Law law;
    bool isSCurve;

    double calc(double x) const { return isSCurve ? law.sCurve(x) : law(x); }
    double inverse(double y) const { return isSCurve ? law.inverse().sCurve(y) : law.inverse()(y); }
};

void PrintTo(const Named& named, std::ostream* out) {
    *out << named.name;
}

std::string numbered(int percent) {
    std::string name("t");
    name += std::to_string(percent);
    return name;
}

std::vector<Named> allNames() {
    std::vector<Named> names;
    for (const Row& row : kRows) {
        const std::string t = numbered(row.percent);
        for (const bool s : {false, true}) {
            const std::string mark = s ? "s" : "";
            names.push_back({t + mark, {true, row.base}, s});
            names.push_back({t + mark + "i", {false, row.base}, s});
            names.push_back({t + "r" + mark, {false, row.reversedBase}, s});
            names.push_back({t + "r" + mark + "i", {true, row.reversedBase}, s});
        }
    }
    return names;
}

class StandardTaperTest : public testing::TestWithParam<Named> {};

TEST_P(StandardTaperTest, FollowsItsLawOverTheWholeTravel) {
    LogCapture log;
    const StandardTaper taper(GetParam().name);
    EXPECT_TRUE(log.lines().empty()) << "a known name";
    for (int i = 0; i <= 200; ++i) {
        const double x = i / 200.0;
        ASSERT_NEAR(taper.calc(static_cast<float>(x)), GetParam().calc(x), 1e-6) << x;
    }
}

TEST_P(StandardTaperTest, EndsAtExactlyZeroAndOne) {
    const StandardTaper taper(GetParam().name);
    EXPECT_EQ(taper.calc(0.0f), 0.0f);
    EXPECT_EQ(taper.calc(1.0f), 1.0f);
    EXPECT_EQ(taper.inverse(0.0f), 0.0f);
    EXPECT_EQ(taper.inverse(1.0f), 1.0f);
}

TEST_P(StandardTaperTest, InverseLeadsBack) {
    const StandardTaper taper(GetParam().name);
    // The rounding of y to a float moves x by what the exact inverse makes of it, which is much where the law
    // is flat; an S-curve passes through 1 - calc, so that its y carries the rounding of a number near 0.5.
    for (int i = 0; i <= 200; ++i) {
        const float x = static_cast<float>(i) / 200.0f;
        const float y = taper.calc(x);
        const double rounding = 1.5e-7 * std::max<double>(y, GetParam().isSCurve ? 0.5 : 0.0);
        ASSERT_GE(taper.inverse(y), GetParam().inverse(std::max(y - rounding, 0.0)) - 2e-7) << x;
        ASSERT_LE(taper.inverse(y), GetParam().inverse(std::min(y + rounding, 1.0)) + 2e-7) << x;
        ASSERT_GE(x, GetParam().inverse(std::max(y - rounding, 0.0)) - 2e-7) << x;
        ASSERT_LE(x, GetParam().inverse(std::min(y + rounding, 1.0)) + 2e-7) << x;
    }
}

TEST_P(StandardTaperTest, RisesAllTheWay) {
    const StandardTaper taper(GetParam().name);
    for (int i = 0; i < 100; ++i) {
        ASSERT_LE(taper.calc(static_cast<float>(i) / 100.0f), taper.calc(static_cast<float>(i + 1) / 100.0f))
            << i;
    }
}

INSTANTIATE_TEST_SUITE_P(AllNames, StandardTaperTest, testing::ValuesIn(allNames()),
                         [](const testing::TestParamInfo<Named>& tested) { return tested.param.name; });

TEST(StandardTaperNamesTest, ThereAreSeventyTwoAndTheLinearOne) {
    EXPECT_EQ(allNames().size(), 72u);
}

TEST(StandardTaperNamesTest, TheNumberIsThePercentageAtMidTravel) {
    for (const Row& row : kRows) {
        const std::string t = numbered(row.percent);
        EXPECT_NEAR(StandardTaper(t).calc(0.5f), row.percent / 100.0, 1e-5) << t;
        EXPECT_NEAR(StandardTaper(t + "r").calc(0.5f), 1.0 - row.percent / 100.0, 1e-5) << t;
        EXPECT_NEAR(StandardTaper(t + "s").calc(0.5f), 0.5, 1e-7) << t;
        EXPECT_NEAR(StandardTaper(t + "rsi").calc(0.5f), 0.5, 1e-7) << t;
    }
    EXPECT_NEAR(StandardTaper("t10").calc(0.5f), 0.1, 1e-6);
    EXPECT_NEAR(StandardTaper("t10r").calc(0.5f), 0.9, 1e-6);
}

TEST(StandardTaperNamesTest, AnITurnsALawIntoItsInverse) {
    for (const Row& row : kRows) {
        for (const char* suffix : {"", "r"}) {
            const std::string t = numbered(row.percent) + suffix;
            const StandardTaper law(t);
            const StandardTaper inverse(t + "i");
            for (int i = 0; i <= 20; ++i) {
                const float x = static_cast<float>(i) / 20.0f;
                EXPECT_NEAR(inverse.calc(x), law.inverse(x), 1e-6) << t << " at " << x;
            }
        }
    }
}

TEST(StandardTaperNamesTest, FiftyIsTheIdentity) {
    const StandardTaper taper("t50");
    for (const float x : {0.0f, 0.1f, 0.5f, 0.77f, 1.0f}) {
        EXPECT_EQ(taper.calc(x), x);
        EXPECT_EQ(taper.inverse(x), x);
    }
}

TEST(StandardTaperNamesTest, UnknownNamesAreAnErrorAndTheIdentity) {
    for (const char* name : {"", "t", "t7", "T10", "t10 ", "t10ir", "t10is", "t10sr", "t50r", "linear"}) {
        LogCapture log;
        const StandardTaper taper(name);
        EXPECT_EQ(log.lines(),
                  std::vector<std::string>{std::string("Error unrecognized taper type = ") + name});
        for (const float x : {0.0f, 0.3f, 1.0f}) {
            EXPECT_EQ(taper.calc(x), x);
            EXPECT_EQ(taper.inverse(x), x);
        }
    }
}

TEST(TaperSCurveTest, IsPointSymmetricalAboutItsMiddle) {
    const TaperSCurve<TaperExponential> slow(81.0);
    const TaperSCurve<TaperLogarithmic> fast(81.0);
    EXPECT_EQ(slow.calc(0.5f), 0.5f);
    EXPECT_EQ(fast.calc(0.5f), 0.5f);
    EXPECT_EQ(slow.inverse(0.5f), 0.5f);
    for (const float x : {0.05f, 0.2f, 0.4f}) {
        EXPECT_NEAR(slow.calc(x) + slow.calc(1.0f - x), 1.0f, 1e-6f);
        EXPECT_NEAR(fast.calc(x) + fast.calc(1.0f - x), 1.0f, 1e-6f);
    }
}

}  // namespace
