#include <fstream>
#include <gmock/gmock.h>

#include "DeskRun.h"
#include "wav/WavWriter.h"

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class Refusal : public DeskRun {
protected:
    // The program refuses with one line that holds the text, and leaves no file behind.
    void expectRefused(std::vector<std::string> arguments, const std::string& text) {
        DeskProcess desk(folder(), withFiles("out", std::move(arguments)));
        EXPECT_EQ(desk.wait(), 2) << text;
        ASSERT_THAT(desk.errorLines(), SizeIs(1)) << text;
        EXPECT_THAT(desk.errorLines().front(), HasSubstr(text));
        EXPECT_THAT(desk.outputLines(), IsEmpty()) << text;
        EXPECT_FALSE(std::filesystem::exists(outFile("out"))) << text;
        EXPECT_FALSE(std::filesystem::exists(reportFile("out"))) << text;
    }
};

}  // namespace

TEST_F(Refusal, GuitarThatIsNotThere) {
    expectRefused({"--in", folder() / "nothing.wav"}, "nothing.wav");
}

TEST_F(Refusal, GuitarThatIsNoWav) {
    const auto file = folder() / "words.wav";
    std::ofstream(file) << "These are words.";
    expectRefused({"--in", file}, "words.wav");
}

TEST_F(Refusal, GuitarAtAnotherRate) {
    const auto file = folder() / "fast.wav";
    const float sample = 0.0f;
    tvk::WavWriter writer(file, 48000, 1);
    writer.write(&sample, 1);
    writer.close();
    expectRefused({"--in", file}, "48000");
}

TEST_F(Refusal, PinsThatNeedThePanel) {
    for (const std::string pin : {"PB_1", "PB2_AND_PB10", "PC_10", "PF0_AND_PF1"})
        expectRefused({"--knob", pin + "=0"}, pin);
}

TEST_F(Refusal, KnobsThatMakeNoSense) {
    expectRefused({"--knob", "PZ_9=0.5"}, "PZ_9");
    expectRefused({"--knob", "PB_0"}, "PIN=VALUE");
    expectRefused({"--knob", "PB_0=loud"}, "loud");
    expectRefused({"--knob", "PB_0=nan"}, "nan");
    expectRefused({"--knob", "PB_0=1.01"}, "between 0 and 1");
    expectRefused({"--knob", "PB_0=-0.01"}, "between 0 and 1");
    expectRefused({"--knob", "PF_4=0.5"}, "0 or 1");
}

TEST_F(Refusal, ValuesOutsideTheirOptions) {
    expectRefused({"--slot", "5"}, "--slot");
    expectRefused({"--slot", "-1"}, "--slot");
    expectRefused({"--clock", "sundial"}, "--clock");
    expectRefused({"--seconds", "0"}, "--seconds");
    expectRefused({"--seconds", "soon"}, "--seconds");
    expectRefused({"--fault", "fire@3"}, "fire@3");
    expectRefused({"--nonsense"}, "--nonsense");
}

TEST_F(Refusal, OutputOverItsInput) {
    const std::string in = guitar("guitar", Samples(10, 0.0f));
    DeskProcess desk(folder(), {"--in", in, "--out", in, "--root", folder() / "root"});
    EXPECT_EQ(desk.wait(), 2);
    EXPECT_THAT(desk.errorLines(), SizeIs(1));
    EXPECT_THAT(readWav(in)[0], SizeIs(10));
}

TEST_F(Refusal, UnwritableReportLeavesAnOlderOutputAlone) {
    std::ofstream(outFile("old")) << "older";
    DeskProcess desk(folder(), {"--out", outFile("old"), "--report", folder() / "none" / "r.json", "--root",
                                folder() / "root"});
    EXPECT_EQ(desk.wait(), 2);
    EXPECT_THAT(desk.errorLines(), SizeIs(1));
    EXPECT_EQ(readText(outFile("old")), "older");
}

TEST_F(Refusal, RootThatCannotBeMade) {
    std::ofstream(folder() / "file") << "in the way";
    DeskProcess desk(folder(), {"--root", folder() / "file" / "root"});
    EXPECT_EQ(desk.wait(), 2);
    EXPECT_THAT(desk.errorLines(), SizeIs(1));
}

TEST_F(Refusal, ACabinetThatIsNotThere) {
    expectRefused({"--cabinet", "/home/root/factoryIRs/Nowhere"}, "Nowhere.wav");
    expectRefused({"--cabinet", "Mine"}, "userIRs/Mine.wav");
}

TEST_F(Refusal, HelpTellsEveryOptionWithAnExample) {
    DeskProcess desk(folder(), {"--help"});
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_THAT(desk.errorLines(), IsEmpty());
    for (const char* option : {"--help", "--in", "--loop", "--out", "--seconds", "--slot", "--knob", "--root",
                               "--clock", "--report", "--fault", "--cabinet"}) {
        const auto lines = desk.outputLines();
        const bool isTold = std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(option) < 8 && line.find(std::string("Example: ") + option) != std::string::npos;
        });
        EXPECT_TRUE(isTold) << option;
    }
}
