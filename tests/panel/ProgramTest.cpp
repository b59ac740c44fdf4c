// Every verb over a pseudo-terminal. What is expected on the line are the bytes of the vectors, which neither
// coder of the project has made.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "LineFixture.h"
#include "panel/FrameScanner.h"
#include "support/PanelVectors.h"
#include "support/TemporaryFolder.h"

using namespace tvk::panel;

namespace {

class ProgramTest : public LineTest {
protected:
    static std::string bytesOf(const std::string& name, double number) {
        const std::vector<PanelVectors::Frame>& frames = PanelVectors::all().frames;
        const auto found = std::find_if(frames.begin(), frames.end(), [&](const auto& frame) {
            return frame.variable.name == name && frame.number == number;
        });
        if (found == frames.end()) throw std::runtime_error("no vector of " + name);
        return {found->bytes.begin(), found->bytes.end()};
    }
    std::string fileOf(const std::string& text) {
        const std::string path = folder.file("script");
        std::ofstream(path) << text;
        return path;
    }
    std::vector<Frame> framesSent() {
        std::vector<Frame> frames;
        FrameScanner scanner;
        for (const Received& received : scanner.take(pty.received()))
            frames.push_back(std::get<Frame>(received));
        return frames;
    }

    TemporaryFolder folder;
};

TEST_F(ProgramTest, SetSendsTheFramesOfThePinsInTheirOrder) {
    EXPECT_EQ(runOnLine({"set", "PA_4", "0.5", "PF_4", "1"}), 0);
    EXPECT_EQ(pty.received(), bytesOf("PA_4", 0.5) + bytesOf("PF_4", 1));
    EXPECT_EQ(runOnLine({"set", "PF_4=1", "PA_4", "0.125"}), 0);
    EXPECT_EQ(pty.received(), bytesOf("PF_4", 1) + bytesOf("PA_4", 0.125));
    EXPECT_EQ(out + err, "");
}

TEST_F(ProgramTest, TheLineIsRawAt115200BaudEightBitsNoParityOneStopBit) {
    runOnLine({"set", "PA_4", "0.5"});
    const termios settings = pty.settings();
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(cfgetispeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), static_cast<tcflag_t>(CS8));
    EXPECT_EQ(settings.c_cflag & (CLOCAL | CREAD), static_cast<tcflag_t>(CLOCAL | CREAD));
    EXPECT_EQ(settings.c_iflag & (ICRNL | INLCR | IGNCR | ISTRIP | IXON), 0u);
    EXPECT_EQ(settings.c_oflag & OPOST, 0u);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0u);
}

TEST_F(ProgramTest, WatchPrintsWhatComesAsAScriptWithTheTimeOfEach) {
    deliver({{0.5, bytesOf("PA_4", 0.5)},
             {1.0, bytesOf("GET_PRODUCT_ID", 1) + "noise" + bytesOf("PF_5", 1).substr(0, 5) +
                       bytesOf("PF_4", 1)}});
    EXPECT_EQ(runOnLine({"watch", "--seconds", "2"}), 0);
    EXPECT_EQ(out,
              "0.500 PA_4 0.5\n"
              "# 1.000 GET_PRODUCT_ID 1 (int32)\n"
              "# 1.000 dropped: bytes outside of frames (5): 6e 6f 69 73 65\n"
              "# 1.000 dropped: a frame without its end: 06 00 50 46\n"
              "1.000 PF_4 1\n");
    EXPECT_EQ(seconds(), 2.0);
}

TEST_F(ProgramTest, WatchReadsWhatCameBeforeItBegan) {
    pty.send(bytesOf("PA_4", 0.5));
    runOnLine({"watch", "--seconds", "0.1"});
    EXPECT_EQ(out, "0.000 PA_4 0.5\n");
}

TEST_F(ProgramTest, WhatWatchPrintsCanBeReplayed) {
    const std::string moves = bytesOf("PA_4", 0.5) + bytesOf("PB2_AND_PB10", 1) + bytesOf("PA_0", 0);
    pty.send(bytesOf("BOOTING", 0) + moves);
    runOnLine({"watch", "--seconds", "1"});
    EXPECT_EQ(runOnLine({"replay", fileOf(out)}), 0);
    EXPECT_EQ(pty.received(), moves);
}

TEST_F(ProgramTest, ReplaySendsEachMoveAtItsTime) {
    std::string log;
    clock.peer = [&] {
        const std::string sent = pty.received();
        if (!sent.empty()) log += std::to_string(seconds()) + "=" + sent + ";";
    };
    EXPECT_EQ(
        runOnLine({"replay", fileOf("0.75 PF_4 1\n0.25 PA_4 0.5 # first\n1.0005 PF_5 1\n1.5 button 1\n")}),
        0);
    EXPECT_EQ(out, "0.250 PA_4 0.5\n0.750 PF_4 1\n1.000 PF_5 1\n");
    EXPECT_EQ(log, "0.250000=" + bytesOf("PA_4", 0.5) + ";0.750000=" + bytesOf("PF_4", 1) + ";");
    EXPECT_EQ(pty.received(), bytesOf("PF_5", 1));
    EXPECT_NEAR(seconds(), 1.0005, 1e-9);
    EXPECT_EQ(err.substr(0, 26), "tarvek-panel: passed over:");
}

TEST_F(ProgramTest, ServeAnswersTheRequestsOfAStartUp) {
    pty.send(bytesOf("BOOTING", 0) + bytesOf("GET_PRODUCT_ID", 1) + bytesOf("GET_CURRENT_VALUES", 1));
    EXPECT_EQ(
        runOnLine({"serve", "--product", "1", "--knob", "PA_4=0.125", "--knob", "PF_4=1", "--seconds", "1"}),
        0);
    const std::vector<Frame> sent = framesSent();
    ASSERT_EQ(sent.size(), 17u);
    EXPECT_EQ(sent[0], intFrame("PF0_AND_PF1", 1));
    EXPECT_EQ(std::count(sent.begin(), sent.end(), floatFrame("PA_4", 0.125f)), 1);
    EXPECT_EQ(std::count(sent.begin(), sent.end(), intFrame("PF_4", 1)), 1);
    EXPECT_EQ(std::count(sent.begin(), sent.end(), floatFrame("PB_1", 0.8f)), 1);
    EXPECT_TRUE(std::is_sorted(sent.begin() + 1, sent.end(),
                               [](const Frame& one, const Frame& other) { return one.name < other.name; }));
    EXPECT_EQ(out, "# product 1 on " + pty.path() +
                       "\n"
                       "# 0.000 BOOTING 0 (int32)\n"
                       "# 0.000 GET_PRODUCT_ID 1 (int32): answered by 1 frame\n"
                       "# 0.000 GET_CURRENT_VALUES 1 (int32): answered by 16 frames\n");
}

TEST_F(ProgramTest, ServeAnswersEachTimeAndNothingElse) {
    deliver({{0.0, bytesOf("GET_PRODUCT_ID", 1) + bytesOf("CLIPPING", 1) + bytesOf("PF_4", 1)},
             {0.25, bytesOf("GET_PRODUCT_ID", 1) + "\xF7\x7F"}});
    EXPECT_EQ(runOnLine({"serve", "--product", "-7", "--seconds", "0.5"}), 0);
    EXPECT_EQ(framesSent(), std::vector<Frame>(2, intFrame("PF0_AND_PF1", -7)));
}

TEST_F(ProgramTest, ServePlaysItsScriptFromTheRequestForTheValuesOn) {
    deliver({{1.0, bytesOf("GET_CURRENT_VALUES", 1)}, {3.0, bytesOf("GET_CURRENT_VALUES", 1)}});
    std::string log;
    std::string whole;
    clock.peer = [&, amplifier = clock.peer] {
        const std::string sent = pty.received();
        if (!sent.empty() && sent.size() < 20) log += std::to_string(seconds()) + " ";
        whole += sent;
        amplifier();
    };
    EXPECT_EQ(runOnLine({"serve", "--product", "0", "--script", fileOf("0.5 PA_4 0.125\n1 PA_4 1\n"),
                         "--seconds", "4"}),
              0);
    EXPECT_EQ(log, "1.500000 2.000000 ");
    std::vector<Frame> volumes;
    FrameScanner scanner;
    for (const Received& received : scanner.take(whole))
        if (std::get<Frame>(received).name == "PA_4") volumes.push_back(std::get<Frame>(received));
    EXPECT_EQ(volumes, (std::vector<Frame>{floatFrame("PA_4", 0.35f), floatFrame("PA_4", 0.125f),
                                           floatFrame("PA_4", 1.0f), floatFrame("PA_4", 1.0f)}));
}

TEST_F(ProgramTest, ASignalEndsWhatWaits) {
    stopDescriptor = eventfd(1, 0);
    for (const std::vector<std::string>& verb :
         {std::vector<std::string>{"watch"}, {"serve", "--product", "0"}, {"replay", fileOf("100 PA_4 1\n")}})
        EXPECT_EQ(runOnLine(verb), 0);
    EXPECT_EQ(pty.received(), "");
    EXPECT_LT(seconds(), 0.1);
    close(stopDescriptor);
}

TEST_F(ProgramTest, BadUseIsOneLineThatSaysWhatAndWhere) {
    const std::string script = fileOf("0 PA_4 0.5\n1 PA_4 2\n");
    const std::vector<std::pair<std::vector<std::string>, std::string>> uses = {
        {{"set", "PA_4", "1.5"}, "set: PA_4 takes a number from 0 to 1, not 1.5"},
        {{"set", "PA_4"}, "set: PA_4 has no value; such as set PA_4 0.5"},
        {{"set", "PX_1", "1"}, "set: there is no pin PX_1; --help lists them"},
        {{"replay", script}, script + ":2: PA_4 takes a number from 0 to 1, not 2"},
        {{"replay", "/nowhere/script"},
         "/nowhere/script: cannot be read; give a file with lines SECONDS PIN VALUE"},
        {{"serve", "--product", "0", "--knob", "PF0_AND_PF1=1"},
         "--knob PF0_AND_PF1=1: these straps are what --product says"},
        {{"serve", "--product", "0", "--knob", "PA_4"},
         "--knob: 'PA_4' is not of the form PIN=VALUE, such as PA_4=0.5"},
        {{"watch", "--seconds", "soon"},
         "--seconds: 'soon' is no time in seconds, from 0 to a year, such as 1.5"},
        {{"check", "--patience", "-1"},
         "--patience: '-1' is no time in seconds, from 0 to a year, such as 1.5"}};
    for (const auto& [words, reason] : uses) {
        EXPECT_EQ(runOnLine(words), 2) << reason;
        EXPECT_EQ(err, "tarvek-panel: " + reason + "\n");
    }
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{}, {"dance"}, {"set"}, {"serve"}, {"watch", "--loud"}}) {
        EXPECT_EQ(runOnLine(words), 2);
        EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1);
        EXPECT_NE(err.find("--help"), std::string::npos) << err;
    }
    EXPECT_EQ(pty.received(), "");
}

TEST_F(ProgramTest, ALineThatIsNoneOrIsLostIsStatusThree) {
    EXPECT_EQ(run({"/nowhere/line", "set", "PA_4", "0.5"}), 3);
    EXPECT_EQ(err, "tarvek-panel: /nowhere/line: cannot be opened: No such file or directory\n");
    EXPECT_EQ(run({"/dev/null", "set", "PA_4", "0.5"}), 3);
    EXPECT_NE(err.find("/dev/null: is no serial line"), std::string::npos);
    clock.peer = [&] { pty.hangUp(); };
    EXPECT_EQ(runOnLine({"watch"}), 3);
    EXPECT_EQ(err, "tarvek-panel: " + pty.path() + ": was hung up\n");
}

TEST_F(ProgramTest, ALineThatNobodyReadsIsStatusThreeAfterASecond) {
    std::string moves;
    for (int i = 0; i < 20000; ++i)
        moves += "0 PA_4 0.5\n";
    EXPECT_EQ(runOnLine({"replay", fileOf(moves)}), 3);
    EXPECT_EQ(err,
              "tarvek-panel: " + pty.path() + ": takes no more bytes; does anybody read at its other end?\n");
    EXPECT_NEAR(seconds(), 1.0, 0.1);
}

TEST_F(ProgramTest, HelpShowsEveryVerbPinAndAnExampleOfEach) {
    EXPECT_EQ(run({"--help"}), 0);
    for (const char* const text : {"set", "watch", "replay", "serve", "check", "--product", "--knob",
                                   "--script", "--seconds", "--patience", "PA_4", "PB2_AND_PB10", "Status:"})
        EXPECT_NE(out.find(text), std::string::npos) << text;
    for (const char* const verb : {"set", "watch", "replay", "serve", "check"})
        EXPECT_NE(out.find(std::string("Example: tarvek-panel PATH ") + verb), std::string::npos) << verb;
    EXPECT_EQ(runOnLine({"serve", "--help"}), 0);
    EXPECT_NE(out.find("--product"), std::string::npos);
    EXPECT_EQ(out.find("--patience"), std::string::npos);
}

}  // namespace
