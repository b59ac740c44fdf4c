#include <fcntl.h>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "desk/PseudoTerminal.h"

using tvk::desk::PseudoTerminal;

namespace {

constexpr int kRounds = 500;
constexpr int kWritesOfARound = 10;

class PseudoTerminalTest : public ::testing::Test {
protected:
    ~PseudoTerminalTest() override { close(program_); }

    // With more and more between them, so that some come while others are on their way.
    void writeAsProgram(int round) const {
        for (int n = 0; n < kWritesOfARound; ++n) {
            ASSERT_EQ(::write(program_, kText.data(), kText.size()), static_cast<ssize_t>(kText.size()));
            for (volatile int work = 0; work < 50 * round;)
                work = work + 1;
        }
    }

    const std::string kText = "frames!";
    PseudoTerminal line_;
    const int program_ = open(line_.path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
};

}  // namespace

TEST_F(PseudoTerminalTest, AReadFindsAllThatTheProgramHasWritten) {
    for (int round = 0; round < kRounds; ++round) {
        writeAsProgram(round);
        ASSERT_EQ(line_.read(4096).size(), kWritesOfARound * kText.size()) << "round " << round;
    }
}

TEST_F(PseudoTerminalTest, AReadTakesNoMoreThanItIsTold) {
    writeAsProgram(0);
    EXPECT_EQ(line_.read(8).size(), 8u);
    EXPECT_EQ(line_.read(4096).size(), kWritesOfARound * kText.size() - 8);
    EXPECT_TRUE(line_.read(4096).empty());
}

TEST_F(PseudoTerminalTest, WhatIsWrittenCanBeReadAtOnce) {
    std::vector<std::uint8_t> bytes(600);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    for (int round = 0; round < kRounds; ++round) {
        line_.write(bytes);
        std::vector<std::uint8_t> got(bytes.size() + 1);
        ASSERT_EQ(::read(program_, got.data(), got.size()), static_cast<ssize_t>(bytes.size()));
        got.pop_back();
        ASSERT_EQ(got, bytes);
    }
}

TEST_F(PseudoTerminalTest, AStoppedFlowTakesNothing) {
    EXPECT_TRUE(line_.setFlow(false));
    EXPECT_FALSE(line_.setFlow(false));
    EXPECT_EQ(::write(program_, kText.data(), kText.size()), -1);
    EXPECT_TRUE(line_.setFlow(true));
    writeAsProgram(0);
}
