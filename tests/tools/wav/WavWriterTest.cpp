#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#include "utility/Exception.h"
#include "wav/GuitarFile.h"
#include "wav/WavWriter.h"

namespace {

class WavWriterTest : public testing::Test {
protected:
    WavWriterTest() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::temp_directory_path() /
                ("tarvek-writer-" + std::to_string(getpid()) + "-" + test->name() + ".wav");
    }
    ~WavWriterTest() override { std::filesystem::remove(path_); }

    std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string path_;
};

TEST_F(WavWriterTest, SamplesComeBackToTheBit) {
    const std::vector<float> interleaved{0.1f, -2.5f, 1e-20f, 3.0f};
    tvk::WavWriter writer(path_, 44100, 2);
    writer.write(interleaved.data(), 2);
    writer.close();
    const tvk::GuitarFile back(path_, 44100);
    EXPECT_EQ(back.input(0), (std::vector<float>{0.1f, 1e-20f}));
    EXPECT_EQ(back.input(1), (std::vector<float>{-2.5f, 3.0f}));
}

TEST_F(WavWriterTest, AFlushedFileIsValidWhileStillOpen) {
    tvk::WavWriter writer(path_, 44100, 1);
    const std::vector<float> samples(100, 0.5f);
    writer.write(samples.data(), 100);
    writer.flush();
    EXPECT_EQ(tvk::GuitarFile(path_, 44100).frames(), 100u);
    writer.write(samples.data(), 50);
    writer.flush();
    EXPECT_EQ(tvk::GuitarFile(path_, 44100).frames(), 150u);
}

TEST_F(WavWriterTest, TheFileHoldsNoTimeOfWriting) {
    const float sample = 0.25f;
    tvk::WavWriter(path_, 44100, 1).write(&sample, 1);
    EXPECT_EQ(bytes().find("PEAK"), std::string::npos);
}

TEST_F(WavWriterTest, AFolderThatDoesNotExistIsRefused) {
    EXPECT_THROW(tvk::WavWriter("/nonexistent/out.wav", 44100, 1), tvk::Exception);
}

}  // namespace
