// The door by its socket, with a card whose thread does nothing but wait for its time.
#include <atomic>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "desk/ClockDoor.h"
#include "desk/soundcard/VirtualTime.h"
#include "support/TemporaryFolder.h"

using namespace std::chrono_literals;

namespace {

class Program {
public:
    explicit Program(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1)
            throw std::runtime_error(path + " cannot be connected to");
    }
    ~Program() { close(socket_); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::string ask(const std::string& text) const {
        if (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) == -1) return "closed";
        return answer();
    }
    std::string answer() const {
        std::string line;
        for (char byte = 0; recv(socket_, &byte, 1, 0) == 1 && byte != '\n';)
            line += byte;
        return line;
    }

private:
    const int socket_;
};

class ClockDoorTest : public testing::Test {
protected:
    ClockDoorTest() {
        time_.hold();
        card_ = std::thread([this] {
            time_.markAudioThread();
            while (!isEnding_)
                time_.waitUntil(time_.now() + 1ms);
        });
        door_.emplace(path(), time_);
    }
    ~ClockDoorTest() override {
        end();
        door_.reset();
    }

    std::string path() const { return folder_.file("clock"); }
    void end() {
        isEnding_ = true;
        time_.release();
        if (card_.joinable()) card_.join();
    }

    TemporaryFolder folder_;
    tvk::desk::VirtualTime time_;
    std::optional<tvk::desk::ClockDoor> door_;
    std::atomic<bool> isEnding_{false};
    std::thread card_;
};

}  // namespace

TEST_F(ClockDoorTest, EachLineMovesTimeBySoMuchAndIsAnsweredThere) {
    const Program program(path());
    EXPECT_EQ(program.ask("run 0.5\n"), "at 0.500000000");
    EXPECT_EQ(time_.now(), 500ms);
    EXPECT_EQ(program.ask("run 0.000000001\n"), "at 0.500000001");
    EXPECT_EQ(time_.now(), 500000001ns);
    EXPECT_EQ(program.ask("run 0\n"), "at 0.500000001");
}

TEST_F(ClockDoorTest, LinesMayComeInPiecesAndSeveralAtOnce) {
    const Program program(path());
    EXPECT_EQ(program.ask("run 1\nrun 2\nru"), "at 1.000000000");
    EXPECT_EQ(program.answer(), "at 3.000000000");
    EXPECT_EQ(program.ask("n 1\n"), "at 4.000000000");
}

TEST_F(ClockDoorTest, ALineThatMakesNoSenseMovesNothingAndTheNextOneCounts) {
    const Program program(path());
    EXPECT_EQ(program.ask("walk 1\n"), "error unknown request; write run SECONDS");
    for (const char* const line : {"run\n", "run \n", "run -1\n", "run nan\n", "run 1 2\n", "\n"})
        EXPECT_EQ(program.ask(line).rfind("error ", 0), 0u) << line;
    EXPECT_EQ(time_.now(), 0ms);
    EXPECT_EQ(program.ask("run 1\n"), "at 1.000000000");
}

TEST_F(ClockDoorTest, ALineWithoutEndIsHungUpOn) {
    const Program program(path());
    EXPECT_EQ(program.ask(std::string(300, 'r')), "");
}

TEST_F(ClockDoorTest, ANextProgramGoesOnWhereTheLastOneStopped) {
    { EXPECT_EQ(Program(path()).ask("run 1\n"), "at 1.000000000"); }
    EXPECT_EQ(Program(path()).ask("run 1\n"), "at 2.000000000");
}

TEST_F(ClockDoorTest, AfterTheRunsEndItSaysSo) {
    const Program program(path());
    EXPECT_EQ(program.ask("run 1\n"), "at 1.000000000");
    end();
    EXPECT_EQ(program.ask("run 1\n"), "error the run has ended");
}
