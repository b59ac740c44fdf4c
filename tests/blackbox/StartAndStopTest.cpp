#include <cmath>
#include <csignal>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <poll.h>

#include "blackbox/support/DeskRun.h"

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class StartAndStop : public DeskRun {
protected:
    // Runs for ever on the machine's clock, with so little to compute that a sanitizer keeps pace: who shares
    // the audio thread's processor would not come to its work otherwise.
    std::vector<std::string> endless(const std::string& name) {
        return withFiles(
            name, {"--in", guitar("guitar", sine(440.0, 0.05f, 1.0)), "--loop", "--slot", kPassThrough});
    }
};

}  // namespace

TEST_F(StartAndStop, LinesOfTheStartComeInOrder) {
    DeskProcess desk(folder(), withFiles("out", {"--seconds", "0.1", "--clock", "virtual"}));
    ASSERT_EQ(desk.wait(), 0);
    EXPECT_EQ(desk.outputLines().front(), "version: 2.0.18-0-gdaefaf3");
    int line = 0;
    for (const char* text :
         {"main: Constructing Model", "AudioProcessorInit: audioSampleRate 44100",
          "AudioProcessorInit: audioBlockLength 32", "AudioProcessorInit: inputDevice hw:0,0",
          "AudioProcessorInit: outputDevice hw:0,0", "AudioProcessorInit: audioFormat 6",
          "AudioAlsaPcm: AudioAlsaPcm::setHwParams : hw:0,0 ",
          "AudioAlsaPcm: AudioAlsaPcm::setHwParams : hw:0,0 ",
          "AudioProcessorInit: allocating inputAudioAlsaPcmBuffer: 768 bytes",
          "AudioProcessorInit: allocating outputAudioAlsaPcmBuffer: 768 bytes",
          "AudioProcessorInit: allocating inputAudioSampleBuffer: 768 bytes",
          "AudioProcessorInit: allocating outputAudioSampleBuffer: 768 bytes", "Model: Constructor called",
          "Model: Constructor complete", "main: completed main", "Press Ctrl+C to halt...", "ready root=",
          "Model: setAudioProcessingPreset(ArvelReverb65)", "AudioProcessor: Created UI for "}) {
        const int found = desk.findLine(text, line);
        ASSERT_GE(found, 0) << text << " is not there after line " << line;
        line = found + 1;
    }
}

TEST_F(StartAndStop, LinesOfTheOrderlyEndComeInOrder) {
    DeskProcess desk(folder(), withFiles("out", {"--seconds", "0.1", "--clock", "virtual"}));
    ASSERT_EQ(desk.wait(), 0);
    int line = desk.findLine("ready root=");
    for (const char* text :
         {"AudioProcessor: destructor called", "AudioProcessor: deleting audioAlsaPcm",
          "AudioAlsaPcm: Detected 0 xruns.", "AudioAlsaPcm: calling drain", "AudioAlsaPcm: calling close",
          "AudioProcessor: freeing inputAudioAlsaPcmBuffer",
          "AudioProcessor: freeing outputAudioAlsaPcmBuffer",
          "AudioProcessor: freeing zeroedOutputAudioAlsaPcmBuffer",
          "AudioProcessor: freeing inputAudioSampleBuffer", "AudioProcessor: freeing outputAudioSampleBuffer",
          "AudioProcessor: deleting audio buffering"}) {
        const int found = desk.findLine(text, line);
        ASSERT_GE(found, 0) << text << " is not there after line " << line;
        line = found + 1;
    }
}

TEST_F(StartAndStop, StopSignalEndsInOrderWithWholeFiles) {
    DeskProcess desk(folder(), endless("out"));
    ASSERT_TRUE(desk.waitForLine("ready root="));
    desk.signal(SIGUSR1);
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_GE(desk.findLine("AudioAlsaPcm: Detected "), 0);
    EXPECT_GE(desk.findLine("AudioProcessor: deleting audio buffering"), 0);
    const auto report = nlohmann::json::parse(readText(reportFile("out")));
    EXPECT_EQ(readWav(outFile("out"))[0].size(), std::lround(report["seconds"].get<double>() * kRateHz));
}

TEST_F(StartAndStop, StopSignalEndsInOrderUnderTheVirtualClockToo) {
    auto arguments = endless("out");
    arguments.insert(arguments.end(), {"--clock", "virtual"});
    DeskProcess desk(folder(), arguments);
    ASSERT_TRUE(desk.waitForLine("AudioProcessor: Created UI for "));
    desk.signal(SIGUSR1);
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_GE(desk.findLine("AudioAlsaPcm: Detected 0 xruns."), 0);
}

TEST_F(StartAndStop, InterruptEndsAtOnceWithoutDestructors) {
    DeskProcess desk(folder(), endless("out"));
    ASSERT_TRUE(desk.waitForLine("ready root="));
    desk.signal(SIGINT);
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_EQ(desk.findLine("AudioProcessor: destructor called"), -1);
    EXPECT_EQ(desk.findLine("AudioAlsaPcm: Detected "), -1);
    // Both are on disk and whole, however little has been played.
    EXPECT_NO_THROW(readWav(outFile("out")));
    EXPECT_TRUE(nlohmann::json::accept(readText(reportFile("out"))));
}

TEST_F(StartAndStop, FilesGrowWhileItPlays) {
    DeskProcess desk(folder(), endless("out"));
    ASSERT_TRUE(desk.waitForLine("ready root="));
    const auto playedSeconds = [&] {
        return nlohmann::json::parse(readText(reportFile("out")))["seconds"].get<double>();
    };
    while (playedSeconds() == 0.0) {
        ASSERT_FALSE(desk.hasEnded()) << desk.errorLines().back();
        poll(nullptr, 0, 10);
    }
    desk.signal(SIGINT);
    EXPECT_EQ(desk.wait(), 0);
    // The header is brought up to date before the report.
    EXPECT_GE(static_cast<double>(readWav(outFile("out"))[0].size()), playedSeconds() * kRateHz - 0.5);
}

TEST_F(StartAndStop, RunsWithWarningsWhereRealTimeIsRefused) {
    DeskProcess desk(folder(), withFiles("out", {"--seconds", "0.1", "--clock", "virtual"}),
                     DeskProcess::Rights::NoRealTime);
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_THAT(desk.errorLines(), Contains(HasSubstr("pthread_setschedparam error:")));
    EXPECT_THAT(readWav(outFile("out"))[0], SizeIs(4410));
}

TEST_F(StartAndStop, EmptyRootIsFilledSoThatNoWarningIsLeft) {
    DeskProcess desk(folder(), withFiles("out", {"--seconds", "0.1", "--clock", "virtual"}));
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(folder() / "root" / "home" / "root" / "product_profile.json"));
    EXPECT_TRUE(std::filesystem::exists(folder() / "root" / "home" / "root" / "PU_Ostrel_RX.json"));
    EXPECT_TRUE(std::filesystem::is_directory(folder() / "root" / "mnt" / "user-data"));
    for (const std::string& line : desk.errorLines())
        EXPECT_THAT(line, Not(HasSubstr("problem reading"))) << line;
}

TEST_F(StartAndStop, RootThatHoldsSomethingIsLeftAsItIs) {
    std::filesystem::create_directories(folder() / "root" / "mnt" / "user-data");
    DeskProcess desk(folder(), withFiles("out", {"--seconds", "0.1", "--clock", "virtual"}));
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(folder() / "root" / "home"));
    EXPECT_THAT(desk.errorLines(), Contains(HasSubstr("problem reading settings")));
}
