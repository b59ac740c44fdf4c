#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "math/ConstFractDelay.h"
#include "support/LogRecorder.h"
#include "support/WhiteNoise.h"

namespace {

// The class's formula, written out in double precision over the whole past.
std::vector<double> reference(const std::vector<float>& in, const std::vector<double>& delays,
                              const std::vector<double>& gains, double feedback) {
    std::vector<double> line, out;
    const auto past = [&line](int n) { return n < 0 ? 0.0 : line[static_cast<std::size_t>(n)]; };
    for (std::size_t n = 0; n < in.size(); ++n) {
        double sum = 0.0;
        for (std::size_t k = 0; k < delays.size(); ++k) {
            const int whole = static_cast<int>(delays[k]);
            const double fraction = delays[k] - whole;
            const int newest = static_cast<int>(n) - 1;
            sum += gains[k] * ((1.0 - fraction) * past(newest - whole) + fraction * past(newest - whole - 1));
        }
        out.push_back(sum);
        line.push_back(in[n] + feedback * sum);
    }
    return out;
}

TEST(ConstFractDelay, ADelayOfZeroReadsTheSampleJustWritten) {
    ConstFractDelay delay(3, 1);
    for (int n = 1; n < 20; ++n) {
        delay.write(static_cast<float>(n));
        EXPECT_EQ(delay.read(0), static_cast<float>(n));
    }
}

TEST(ConstFractDelay, TapsReadBetweenTheSamples) {
    ConstFractDelay delay(4, 3);
    delay.setTap(0, 1.0);
    delay.setTap(1, 2.25);
    delay.setTap(2, 4.0);
    for (int n = 0; n < 23; ++n)
        delay.write(static_cast<float>(n * n));
    EXPECT_FLOAT_EQ(delay.read(0), 21.0F * 21.0F);
    EXPECT_FLOAT_EQ(delay.read(1), 0.75F * 400.0F + 0.25F * 361.0F);
    EXPECT_FLOAT_EQ(delay.read(2), 18.0F * 18.0F);
}

TEST(ConstFractDelay, BlocksOfAnyLengthFollowTheFormula) {
    const std::vector<double> delays{0.0, 0.5, 12.25, 87.0005, 1000.0}, gains{0.2, -0.1, 0.4, 0.3, 0.15};
    const auto in = whiteNoise(6000, 7);
    const auto expected = reference(in, delays, gains, 0.55);
    for (int block : {1, 7, 32, 33, 500, 1500}) {
        ConstFractDelay delay(1000, 5);
        for (int k = 0; k < 5; ++k) {
            delay.setTap(k, delays[static_cast<std::size_t>(k)]);
            delay.setTapGain(k, static_cast<float>(gains[static_cast<std::size_t>(k)]));
        }
        delay.setFeedback(0.55F);
        std::vector<float> out(in.size());
        for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(block)) {
            const auto count = std::min(static_cast<std::size_t>(block), in.size() - n);
            delay.process(in.data() + n, out.data() + n, static_cast<int>(count));
        }
        for (std::size_t n = 0; n < in.size(); ++n)
            ASSERT_NEAR(out[n], expected[n], 2e-5) << "block " << block << ", sample " << n;
    }
}

TEST(ConstFractDelay, KeepsItsTapsWhenAnIndexOrADelayIsWrong) {
    const LogRecorder log;
    ConstFractDelay delay(10, 2);
    delay.setTap(1, 10.0);
    delay.setTap(1, 10.5);
    EXPECT_EQ(log.count("Error invalid tap size, greater than requested max delay."), 1);
    EXPECT_EQ(delay.getTap(1), 10.0F);
    delay.setTap(2, 1.0);
    EXPECT_EQ(delay.getTap(2), 0.0F);
    EXPECT_EQ(delay.getTap(-1), 0.0F);
    EXPECT_EQ(log.count("Error requested tap index out of range."), 3);
}

TEST(ConstFractDelay, SettingTheFeedbackAsksItsQuestion) {
    const LogRecorder log;
    ConstFractDelay delay(10, 1);
    delay.setFeedback(0.1F);
    EXPECT_TRUE(log.has("ConstFractDelay: Is this right? See ConstFractDelay::setFeedback."));
}

TEST(ConstFractDelay, ClearLeavesSilence) {
    ConstFractDelay delay(50, 1);
    delay.setTap(0, 40.5);
    delay.setFeedback(0.9F);
    auto in = whiteNoise(200, 7);
    std::vector<float> out(in.size());
    delay.process(in.data(), out.data(), 200);
    delay.clear();
    std::fill(in.begin(), in.end(), 0.0F);
    delay.process(in.data(), out.data(), 200);
    for (float sample : out)
        EXPECT_EQ(sample, 0.0F);
}

}  // namespace
