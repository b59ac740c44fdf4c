#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "proj/models/audio/SampleConversion.h"

namespace {

// The same law in 64-bit arithmetic.
std::int32_t expectedRaw(float sample, int bitDepth) {
    const double scaled = std::trunc(static_cast<double>(sample) * 0x1p31);
    const double limited = std::min(std::max(scaled, -0x1p31), 0x1p31 - 1.0);
    return static_cast<std::int32_t>(static_cast<std::int64_t>(limited) >> (32 - bitDepth));
}

double expectedSample(std::int32_t raw) {
    const std::int64_t low24 = raw & 0xFFFFFF;
    return static_cast<double>(low24 >= 0x800000 ? low24 - 0x1000000 : low24) / 0x1p23;
}

TEST(SampleConversion, WordsBecomeTheirLow24BitsOverFullScale) {
    std::vector<std::int32_t> raw{0,        1,          -1,         0x7FFFFF,    -0x800000,
                                  0x400000, 0x01000001, 0x7F800000, -0x7FFFFFFF, 0x00FFFFFF};
    std::mt19937 random(1);
    while (raw.size() < 192)
        raw.push_back(static_cast<std::int32_t>(random()));
    std::vector<float> samples(raw.size());
    convertRawToFloat(raw.data(), samples.data(), raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i)
        EXPECT_EQ(static_cast<double>(samples[i]), expectedSample(raw[i])) << raw[i];
}

TEST(SampleConversion, FloatsBecomeTruncatedWordsOfBothDepths) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> amplitude(-1.2f, 1.2f);
    std::vector<float> samples{0.0f, -0.0f, 1e-7f, -1e-7f, 1e-10f, -1e-10f, 0.999999f, -0.999999f};
    while (samples.size() < 4096)
        samples.push_back(amplitude(random));
    std::vector<std::int32_t> raw(samples.size());
    for (const int bitDepth : {24, 32}) {
        convertFloatToRaw(samples.data(), raw.data(), samples.size(), bitDepth);
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(raw[i], expectedRaw(samples[i], bitDepth)) << samples[i];
    }
}

TEST(SampleConversion, BeyondFullScaleSaturates) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float samples[8] = {1.0f, -1.0f, 1.5f, -1.5f, infinity, -infinity, 1e30f, -1e30f};
    std::int32_t raw[8];
    convertFloatToRaw(samples, raw, 8, 24);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(raw[i], i % 2 == 0 ? 0x7FFFFF : -0x800000) << samples[i];
    convertFloatToRaw(samples, raw, 8, 32);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(raw[i], i % 2 == 0 ? INT32_MAX : INT32_MIN) << samples[i];
}

TEST(SampleConversion, NotANumberBecomesZero) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float samples[4] = {nan, 0.5f, -nan, -0.5f};
    std::int32_t raw[4];
    convertFloatToRaw(samples, raw, 4, 24);
    EXPECT_EQ(raw[0], 0);
    EXPECT_EQ(raw[1], 0x400000);
    EXPECT_EQ(raw[2], 0);
    EXPECT_EQ(raw[3], -0x400000);
}

TEST(SampleConversion, ARemainderBelowFourIsLeftAlone) {
    const std::vector<float> samples(7, 0.5f);
    std::vector<std::int32_t> raw(7, 99);
    convertFloatToRaw(samples.data(), raw.data(), 7, 24);
    EXPECT_EQ(raw, (std::vector<std::int32_t>{0x400000, 0x400000, 0x400000, 0x400000, 99, 99, 99}));
    std::vector<float> back(7, 99.0f);
    convertRawToFloat(raw.data(), back.data(), 7);
    EXPECT_EQ(back, (std::vector<float>{0.5f, 0.5f, 0.5f, 0.5f, 99.0f, 99.0f, 99.0f}));
}

TEST(SampleConversion, A24BitWordComesBackAsItWas) {
    for (std::int32_t word = -0x800000; word <= 0x7FFFFC; word += 4093) {
        const std::int32_t raw[4] = {word, word + 1, word + 2, word + 3};
        float samples[4];
        std::int32_t back[4];
        convertRawToFloat(raw, samples, 4);
        convertFloatToRaw(samples, back, 4, 24);
        for (int i = 0; i < 4; ++i)
            ASSERT_EQ(back[i], raw[i]);
    }
}

}  // namespace
