#include <cmath>
#include <gtest/gtest.h>

#include "math/DelayTimeControl.h"
#include "support/LogRecorder.h"

namespace {

constexpr float kRate = 44100.0F;

TEST(DelayTimeControl, ALoadJumpsAtOnce) {
    DelayTimeControl control(2.0F, 0.1F, kRate);
    control.setDelayTime(1, 0.25F);
    EXPECT_DOUBLE_EQ(control.tick(), 11025.0);
}

TEST(DelayTimeControl, ALiveChangeGlidesByTheOnePoleLaw) {
    DelayTimeControl control(2.0F, 0.1F, kRate);
    control.setDelayTime(1, 1.0F);
    control.setDelayTime(0, 0.5F);
    for (int n = 1; n <= 8820; ++n) {
        const double expected = 22050.0 + 22050.0 * std::exp(-n / (0.1 * 44100.0));
        ASSERT_NEAR(control.tick(), expected, 1e-3) << n;
    }
}

TEST(DelayTimeControl, TheGlideArrivesToAThousandthOfASample) {
    DelayTimeControl control(10.0F, 0.1F, kRate);
    control.setDelayTime(1, 1.0F);
    control.setDelayTime(0, 9.0F);
    double samples = 0.0;
    for (int n = 0; n < 4 * 44100; ++n)
        samples = control.tick();
    EXPECT_NEAR(samples, 396900.0, 1e-3);
}

TEST(DelayTimeControl, ATimeAboveTheMaximumIsAnErrorAndTheMaximum) {
    const LogRecorder log;
    DelayTimeControl control(0.5F, 0.1F, kRate);
    control.setDelayTime(1, 0.5F);
    EXPECT_EQ(log.count("Error newDelayTime<=maxDlyTime"), 0);
    control.setDelayTime(1, 0.6F);
    EXPECT_EQ(log.count("Error newDelayTime<=maxDlyTime"), 1);
    EXPECT_DOUBLE_EQ(control.tick(), 22050.0);
    EXPECT_FLOAT_EQ(control.getDelayTime(), 0.5F);
}

TEST(DelayTimeControl, TheTimeReadBackIsTheTarget) {
    DelayTimeControl control(2.0F, 0.1F, kRate);
    control.setDelayTime(0, 0.333F);
    EXPECT_FLOAT_EQ(control.getDelayTime(), 0.333F);
}

}  // namespace
