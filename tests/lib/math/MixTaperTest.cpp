#include <cmath>
#include <gtest/gtest.h>

#include "math/MixTaper.h"

namespace {

TEST(MNTaperTest, BothGainsAreOneOverTheMiddle) {
    const MNTaper taper("t20", 0.6f);  // limit 0.4: the middle runs from 0.4 to 0.6
    for (const float x : {0.41f, 0.5f, 0.59f}) {
        float dry = 0.0f, wet = 0.0f;
        taper.calc(dry, wet, x);
        EXPECT_EQ(dry, 1.0f) << x;
        EXPECT_EQ(wet, 1.0f) << x;
    }
}

TEST(MNTaperTest, EachSideFallsByTheTaper) {
    const double m = 0.3;
    const double limit = 1.0 - m;
    const MNTaper taper("t10", static_cast<float>(m));
    const auto gain = [&](double x) { return x >= limit ? 1.0 : (std::pow(81.0, x / limit) - 1.0) / 80.0; };
    for (int i = 0; i <= 100; ++i) {
        if (i == 30 || i == 70) continue;  // the corner itself, where rounding decides
        const double x = i / 100.0;
        float dry = -1.0f, wet = -1.0f;
        taper.calc(dry, wet, static_cast<float>(x));
        EXPECT_NEAR(wet, gain(x), 1e-5) << x;
        EXPECT_NEAR(dry, gain(1.0 - x), 1e-5) << x;
    }
}

TEST(MNTaperTest, TheEndsAreOneSideAlone) {
    const MNTaper taper("t50", 0.5f);
    float dry = -1.0f, wet = -1.0f;
    taper.calc(dry, wet, 0.0f);
    EXPECT_EQ(dry, 1.0f);
    EXPECT_EQ(wet, 0.0f);
    taper.calc(dry, wet, 1.0f);
    EXPECT_EQ(dry, 0.0f);
    EXPECT_EQ(wet, 1.0f);
}

TEST(EqualPowerMixTaperTest, PowersSumToOne) {
    const EqualPowerMixTaper taper;
    for (int i = 0; i <= 50; ++i) {
        const double x = i / 50.0;
        float dry = -1.0f, wet = -1.0f;
        taper.calc(dry, wet, static_cast<float>(x));
        EXPECT_NEAR(wet * wet + dry * dry, 1.0, 1e-6) << x;
        EXPECT_NEAR(wet, std::sqrt(x), 1e-6) << x;
        EXPECT_GE(dry, 0.0f);
    }
}

}  // namespace
