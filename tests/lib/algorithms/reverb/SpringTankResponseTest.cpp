#include <fstream>
#include <gtest/gtest.h>

#include "algorithms/reverb/SpringTankResponse.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"

namespace {

void put(std::ofstream& file, unsigned value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        file.put(static_cast<char>(value >> (8 * i)));
}

// A 16-bit mono WAV file that counts upwards.
void writeWav(const std::string& path, unsigned samples, unsigned rateHz) {
    std::ofstream file(path, std::ios::binary);
    file << "RIFF";
    put(file, 36 + 2 * samples, 4);
    file << "WAVEfmt ";
    put(file, 16, 4);
    put(file, 1, 2);
    put(file, 1, 2);
    put(file, rateHz, 4);
    put(file, 2 * rateHz, 4);
    put(file, 2, 2);
    put(file, 16, 2);
    file << "data";
    put(file, 2 * samples, 4);
    for (unsigned n = 0; n < samples; ++n)
        put(file, n, 2);
}

class SpringTankResponseTest : public testing::Test {
protected:
    ~SpringTankResponseTest() override { SpringTankResponse::setFile(""); }

    std::string file(const std::string& name) const { return (folder.path() / name).string(); }

    const LogRecorder log;
    const TemporaryFolder folder;
};

TEST_F(SpringTankResponseTest, EveryTankSharesOneCopy) {
    writeWav(file("tank.wav"), 6000, 44100);
    SpringTankResponse::setFile(file("tank.wav"));
    const auto first = SpringTankResponse::get(44100.0F);
    ASSERT_TRUE(first);
    EXPECT_EQ(SpringTankResponse::get(44100.0F), first);
    EXPECT_EQ(first->head->taps(), 2048);
    EXPECT_TRUE(first->middle);
    EXPECT_TRUE(first->tail);
}

TEST_F(SpringTankResponseTest, ItIsReadOnceAndNotForEachTank) {
    writeWav(file("tank.wav"), 6000, 44100);
    SpringTankResponse::setFile(file("tank.wav"));
    const auto* first = SpringTankResponse::get(44100.0F).get();
    std::filesystem::remove(file("tank.wav"));
    SpringTankResponse::setFile(file("tank.wav"));
    EXPECT_EQ(SpringTankResponse::get(44100.0F).get(), first);
}

TEST_F(SpringTankResponseTest, AMissingFileIsAnErrorAndNoResponse) {
    SpringTankResponse::setFile(file("absent.wav"));
    EXPECT_EQ(SpringTankResponse::get(44100.0F), nullptr);
    EXPECT_EQ(log.count("Error no spring tank response, the tank is silent: '" + file("absent.wav") + "'"),
              1);
}

TEST_F(SpringTankResponseTest, WithoutAFileThereIsNoResponse) {
    SpringTankResponse::setFile("");
    EXPECT_EQ(SpringTankResponse::get(44100.0F), nullptr);
    EXPECT_TRUE(log.has("Error no spring tank response, the tank is silent: ''"));
}

TEST_F(SpringTankResponseTest, AFileOfAnotherRateIsRefused) {
    writeWav(file("tank.wav"), 6000, 48000);
    SpringTankResponse::setFile(file("tank.wav"));
    EXPECT_EQ(SpringTankResponse::get(44100.0F), nullptr);
    EXPECT_TRUE(SpringTankResponse::get(48000.0F));
}

TEST_F(SpringTankResponseTest, AnotherFileReplacesItForThoseWhoAskLater) {
    writeWav(file("one.wav"), 3000, 44100);
    writeWav(file("two.wav"), 1000, 44100);
    SpringTankResponse::setFile(file("one.wav"));
    const auto one = SpringTankResponse::get(44100.0F);
    SpringTankResponse::setFile(file("two.wav"));
    const auto two = SpringTankResponse::get(44100.0F);
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->head->taps(), 2048);
    EXPECT_EQ(two->head->taps(), 1000);
    EXPECT_FALSE(two->middle);
}

}  // namespace
