#include <cmath>
#include <gtest/gtest.h>
#include <sndfile.h>

#include "algorithms/reverb/SpringTankResponse.h"
#include "core/units/reverb/DUBS_SpringConv.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "support/WhiteNoise.h"
#include "utility/BackgroundJobs.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0F;
using Signal = std::vector<float>;

void writeWav(const std::string& path, const Signal& samples) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr);
    sf_writef_float(file, samples.data(), static_cast<sf_count_t>(samples.size()));
    sf_close(file);
}

class SpringConv : public testing::Test {
protected:
    SpringConv() { SpringTankResponse::setFile(""); }
    ~SpringConv() override { SpringTankResponse::setFile(""); }

    static Parameter<float>& level(DUBS_SpringConv& unit) {
        return dynamic_cast<Parameter<float>&>(*unit.getParameter("wetLvl"));
    }

    const LogRecorder log;
    const TemporaryFolder folder;
};

TEST_F(SpringConv, AddsTheResponseToBothSides) {
    // Longer than twice the head, so that all three stages of the convolver speak.
    Signal response = whiteNoise(5000, 1, 0.5F);
    for (std::size_t n = 0; n < response.size(); ++n)
        response[n] *= std::exp(-static_cast<float>(n) / 1500.0F);
    const std::string file = (folder.path() / "tank.wav").string();
    writeWav(file, response);
    SpringTankResponse::setFile(file);
    DUBS_SpringConv unit("DUBS_SpringConv", kBlock, kRate);
    level(unit).init(0.25F);
    const Signal left = whiteNoise(8000, 2, 0.5F), right = whiteNoise(8000, 3, 0.5F);
    Signal outLeft = left, outRight = right;
    for (std::size_t n = 0; n < left.size(); n += kBlock) {
        unit.process(&outLeft[n], &outRight[n], &outLeft[n], &outRight[n]);
        tvk::BackgroundJobs::waitUntilIdle();
    }
    const double dry = std::pow(10.0, -0.005);
    for (std::size_t n = 0; n < left.size(); n += 7) {
        double wet = 0.0;
        for (std::size_t k = 0; k < response.size() && k <= n; ++k)
            wet += 0.25 * 0.2 * response[k] * 0.5 * (left[n - k] + right[n - k]);
        ASSERT_NEAR(outLeft[n], wet + dry * left[n], 2e-5) << n;
        ASSERT_NEAR(outRight[n], wet + dry * right[n], 2e-5) << n;
    }
}

TEST_F(SpringConv, WithoutAResponseItPassesItsDrySignal) {
    DUBS_SpringConv unit("DUBS_SpringConv", kBlock, kRate);
    EXPECT_EQ(log.startingWith("Error").size(), 1U);
    Signal left = whiteNoise(320, 2, 0.5F), right = whiteNoise(320, 3, 0.5F);
    const Signal in = left;
    for (std::size_t n = 0; n < left.size(); n += kBlock)
        unit.process(&left[n], &right[n], &left[n], &right[n]);
    for (std::size_t n = 0; n < left.size(); ++n)
        EXPECT_FLOAT_EQ(left[n], std::pow(10.0F, -0.005F) * in[n]);
}

TEST_F(SpringConv, ALevelOfZeroIsMinus60Db) {
    writeWav((folder.path() / "tank.wav").string(), {1.0F});
    SpringTankResponse::setFile((folder.path() / "tank.wav").string());
    DUBS_SpringConv unit("DUBS_SpringConv", kBlock, kRate);
    level(unit).init(0.0F);
    Signal left(320, 1.0F), right(320, 1.0F);
    for (std::size_t n = 0; n < left.size(); n += kBlock)
        unit.process(&left[n], &right[n], &left[n], &right[n]);
    EXPECT_NEAR(left.back(), std::pow(10.0, -0.005) + 0.2e-3, 1e-6);
}

}  // namespace
