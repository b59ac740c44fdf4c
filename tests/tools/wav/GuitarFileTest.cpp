#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sndfile.h>
#include <unistd.h>
#include <vector>

#include "utility/Exception.h"
#include "wav/GuitarFile.h"

namespace {

class GuitarFileTest : public testing::Test {
protected:
    GuitarFileTest() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = std::filesystem::temp_directory_path() /
                  ("tarvek-wav-" + std::to_string(getpid()) + "-" + test->name());
        std::filesystem::create_directories(folder_);
    }
    ~GuitarFileTest() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name) const { return folder_ / name; }

    std::string write(int subtype, int rate, int channels, const std::vector<float>& interleaved,
                      int container = SF_FORMAT_WAV) const {
        const std::string file = path("in.wav");
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = channels;
        info.format = container | subtype;
        SNDFILE* handle = sf_open(file.c_str(), SFM_WRITE, &info);
        EXPECT_NE(handle, nullptr) << sf_strerror(nullptr);
        sf_writef_float(handle, interleaved.data(), static_cast<sf_count_t>(interleaved.size()) / channels);
        sf_close(handle);
        return file;
    }

    static std::string refusal(const std::string& file, int rate = 44100) {
        try {
            const tvk::GuitarFile guitar(file, rate);
        } catch (const tvk::Exception& refused) {
            return refused.what();
        }
        return {};
    }

private:
    std::filesystem::path folder_;
};

TEST_F(GuitarFileTest, EverySampleFormatGivesItsValuesWithinItsResolution) {
    const std::vector<float> samples{0.0f, 0.5f, -0.5f, 0.25f, -1.0f};
    const struct {
        int subtype;
        double step;
    } formats[] = {{SF_FORMAT_PCM_16, std::ldexp(1.0, -15)},
                   {SF_FORMAT_PCM_24, std::ldexp(1.0, -23)},
                   {SF_FORMAT_PCM_32, std::ldexp(1.0, -24)},
                   {SF_FORMAT_FLOAT, 0.0}};
    for (const auto& format : formats) {
        const tvk::GuitarFile guitar(write(format.subtype, 44100, 1, samples), 44100);
        ASSERT_EQ(guitar.frames(), samples.size());
        for (size_t i = 0; i < samples.size(); ++i)
            EXPECT_NEAR(guitar.input(0)[i], samples[i], format.step) << format.subtype << " sample " << i;
    }
}

TEST_F(GuitarFileTest, OneChannelFeedsBothInputs) {
    const tvk::GuitarFile guitar(write(SF_FORMAT_FLOAT, 44100, 1, {0.1f, 0.2f, 0.3f}), 44100);
    EXPECT_EQ(guitar.input(0), (std::vector<float>{0.1f, 0.2f, 0.3f}));
    EXPECT_EQ(guitar.input(1), guitar.input(0));
}

TEST_F(GuitarFileTest, OfTwoChannelsTheFirstFeedsInputZero) {
    const tvk::GuitarFile guitar(write(SF_FORMAT_FLOAT, 48000, 2, {0.1f, -0.1f, 0.2f, -0.2f}), 48000);
    EXPECT_EQ(guitar.input(0), (std::vector<float>{0.1f, 0.2f}));
    EXPECT_EQ(guitar.input(1), (std::vector<float>{-0.1f, -0.2f}));
}

TEST_F(GuitarFileTest, RefusalsNameTheFileAndTheReason) {
    EXPECT_THAT(refusal(path("missing.wav")), testing::HasSubstr("missing.wav"));
    EXPECT_THAT(refusal(write(SF_FORMAT_FLOAT, 48000, 1, {0.0f})), testing::HasSubstr("is at 48000 Hz"));
    EXPECT_THAT(refusal(write(SF_FORMAT_FLOAT, 44100, 3, {0, 0, 0})), testing::HasSubstr("has 3 channels"));
    EXPECT_THAT(refusal(write(SF_FORMAT_DOUBLE, 44100, 1, {0})), testing::HasSubstr("is not a WAV of"));
    EXPECT_THAT(refusal(write(SF_FORMAT_PCM_16, 44100, 1, {0}, SF_FORMAT_AIFF)),
                testing::HasSubstr("is not a WAV of"));
    EXPECT_THAT(refusal(write(SF_FORMAT_FLOAT, 44100, 1, {0, std::numeric_limits<float>::quiet_NaN()})),
                testing::HasSubstr("not a finite number at frame 1"));
    std::ofstream(path("noise.wav")) << "this is no sound file";
    EXPECT_THAT(refusal(path("noise.wav")), testing::HasSubstr("cannot read guitar file"));
}

}  // namespace
