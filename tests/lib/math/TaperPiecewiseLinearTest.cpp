#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "LogCapture.h"
#include "math/TaperPiecewiseLinear.h"

namespace {

TEST(TaperPiecewiseLinearTest, JoinsItsPointsByStraightLines) {
    const TaperPiecewiseLinear taper({2.0f, 5.0f, -1.0f, 0.0f, 10.0f});
    const float points[] = {2.0f, 5.0f, -1.0f, 0.0f, 10.0f};
    for (int i = 0; i < 4; ++i) {
        for (const double part : {0.0, 0.25, 0.5, 0.9}) {
            EXPECT_NEAR(taper.calc(static_cast<float>((i + part) / 4.0)),
                        points[i] + (points[i + 1] - points[i]) * part, 1e-5)
                << i << " and " << part;
        }
    }
    EXPECT_EQ(taper.calc(1.0f), 10.0f);
}

TEST(TaperPiecewiseLinearTest, LimitsTheKnob) {
    const TaperPiecewiseLinear taper({2.0f, 5.0f, 3.0f});
    EXPECT_EQ(taper.calc(-0.5f), 2.0f);
    EXPECT_EQ(taper.calc(1.5f), 3.0f);
    EXPECT_EQ(taper.calc(std::numeric_limits<float>::infinity()), 3.0f);
    EXPECT_EQ(taper.calc(std::nanf("")), 2.0f);
}

TEST(TaperPiecewiseLinearTest, FewerThanTwoPointsAreAnErrorAndLeaveItUninitialised) {
    TaperPiecewiseLinear taper;
    LogCapture log;
    taper.addSegments({});
    taper.addSegments({0.5f});
    EXPECT_EQ(log.count("Error need at least 2 segment endpoints to use this class"), 2);
    EXPECT_EQ(taper.calc(0.5f), 0.0f);
    EXPECT_EQ(log.count("Error calc called before endpoints initialized"), 1);
    taper.addSegments({1.0f, 3.0f});
    EXPECT_EQ(taper.calc(0.5f), 2.0f);
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST(TaperPiecewiseLinearTest, TellsItsSegmentsAndItsAnswers) {
    LogCapture log;
    tvk::log::enableDebug(true);
    const TaperPiecewiseLinear taper({0.0f, 0.5f, 2.0f});
    EXPECT_FLOAT_EQ(taper.calc(0.75f), 1.25f);
    EXPECT_EQ(
        log.lines(),
        (std::vector<std::string>{
            "TaperPiecewiseLinear: added segment: min=0.000000, max=0.500000",
            "TaperPiecewiseLinear: added segment: min=0.500000, max=2.000000",
            "TaperPiecewiseLinear: knob=0.8, index=1, offset=0.50, min=0.500, max=2.000, value=1.250"}));
}

}  // namespace
