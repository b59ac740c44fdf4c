#include <fstream>
#include <gmock/gmock.h>

#include "blackbox/support/DeskRun.h"
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

TEST_F(Refusal, StrapsThatHaveAnOptionOfTheirOwn) {
    expectRefused({"--knob", "PF0_AND_PF1=0"}, "--product");
    expectRefused({"--product", "0", "--slot", "2"}, "--product");
}

TEST_F(Refusal, KnobsThatMakeNoSense) {
    expectRefused({"--knob", "PZ_9=0.5"}, "PZ_9");
    expectRefused({"--knob", "PB_0"}, "PIN=VALUE");
    expectRefused({"--knob", "PB_0=loud"}, "loud");
    expectRefused({"--knob", "PB_0=nan"}, "nan");
    expectRefused({"--knob", "PB_0=1.01"}, "from 0 to 1, not 1.01");
    expectRefused({"--knob", "PB_0=-0.01"}, "from 0 to 1, not -0.01");
    expectRefused({"--knob", "PF_4=0.5"}, "whole number");
}

TEST_F(Refusal, ValuesOutsideTheirOptions) {
    expectRefused({"--slot", "5"}, "--slot");
    expectRefused({"--slot", "-1"}, "--slot");
    expectRefused({"--clock", "sundial"}, "--clock");
    expectRefused({"--seconds", "0"}, "--seconds");
    expectRefused({"--seconds", "soon"}, "--seconds");
    expectRefused({"--fault", "fire@3"}, "fire@3");
    expectRefused({"--fault", "hid-unplug@later"}, "hid-unplug@later");
    expectRefused({"--hold"}, "--clock virtual");
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

TEST_F(Refusal, ScriptsByFileAndLine) {
    const auto refuseLine = [&](const std::string& line, const std::string& reason) {
        std::ofstream(folder() / "evening.txt") << "# comment\n\n0.5 PA_4 0.25\n" << line << "\n";
        expectRefused({"--script", folder() / "evening.txt"}, "evening.txt:4: " + reason);
    };
    refuseLine("PA_4 0.5", "'PA_4' is no time");
    refuseLine("-1 PA_4 0.5", "'-1' is no time");
    refuseLine("1", "say what happens");
    refuseLine("1 PA_4", "PA_4 takes one value");
    refuseLine("1 PA_4 1.5", "PA_4 takes a number from 0 to 1, not 1.5");
    refuseLine("1 PX_4 0.5", "there is no pin PX_4");
    refuseLine("1 PB2_AND_PB10 0.5", "PB2_AND_PB10 takes a whole number, not '0.5'");
    refuseLine("1 button 2", "a button is 1 (down) or 0 (up)");
    refuseLine("1 hid 0g", "'0g' is not a byte");
    refuseLine("1 hid 012", "a report is 1 to 64 bytes, two hexadecimal digits each");
    refuseLine("1 hid " + std::string(130, '0'), "a report is 1 to 64 bytes");
    refuseLine("1 plug in", "plug takes no value");
    expectRefused({"--script", folder() / "nothing.txt"}, "nothing.txt: cannot be read");
}

TEST_F(Refusal, ARootThatAnotherDeskUses) {
    DeskProcess first(folder(), {"--root", folder() / "root", "--clock", "virtual", "--hold"});
    ASSERT_TRUE(first.waitForLine("ready root="));
    expectRefused({}, "another tarvek-desk");
}

TEST_F(Refusal, HelpTellsEveryOptionWithAnExample) {
    DeskProcess desk(folder(), {"--help"});
    EXPECT_EQ(desk.wait(), 0);
    EXPECT_THAT(desk.errorLines(), IsEmpty());
    for (const char* option :
         {"--help", "--in", "--loop", "--out", "--seconds", "--product", "--slot", "--knob", "--script",
          "--external-panel", "--no-host", "--hold", "--root", "--clock", "--report", "--fault"}) {
        const auto lines = desk.outputLines();
        const bool isTold = std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(option) < 8 && line.find(std::string("Example: ") + option) != std::string::npos;
        });
        EXPECT_TRUE(isTold) << option;
    }
}
