#include <atomic>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "proj/views/controls/TarvekGPIOPoll.h"
#include "support/LogRecorder.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

namespace {

using Lines = std::vector<std::string>;
using Values = std::vector<int>;

// Polls on a thread of its own until it is stopped or returns by itself.
class Polling {
public:
    Polling(const std::string& path, short events) : poll_(events) {
        thread_ = std::thread([this, path] {
            poll_.poll(path, [this](int value) {
                const std::lock_guard lock(mutex_);
                values_.push_back(value);
            });
            hasReturned_ = true;
        });
    }
    ~Polling() {
        poll_.stop();
        thread_.join();
    }

    Values await(std::size_t count) const {
        while (true) {
            {
                const std::lock_guard lock(mutex_);
                if (values_.size() >= count) return values_;
            }
            std::this_thread::yield();
        }
    }
    void awaitReturn() const {
        while (!hasReturned_)
            std::this_thread::yield();
    }

private:
    TarvekGPIOPoll poll_;
    mutable std::mutex mutex_;
    Values values_;
    std::atomic<bool> hasReturned_{false};
    std::thread thread_;
};

class Fifo {
public:
    explicit Fifo(const std::string& path) {
        mkfifo(path.c_str(), 0600);
        descriptor_ = open(path.c_str(), O_RDWR);
    }
    ~Fifo() { close(descriptor_); }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(descriptor_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

private:
    int descriptor_;
};

class TarvekGPIOPollTest : public testing::Test {
protected:
    TemporaryFolder folder;
    LogRecorder log;
    const std::string path = folder.file("value");
};

TEST_F(TarvekGPIOPollTest, AStreamGivesOneValueALine) {
    const Fifo button(path);
    const Polling polling(path, POLLIN);
    button.write("1\n");
    EXPECT_EQ(polling.await(1), Values{1});
    button.write("0\n1\n0\n1\n0\n1\n0\n");
    EXPECT_EQ(polling.await(8), (Values{1, 0, 1, 0, 1, 0, 1, 0}));
}

TEST_F(TarvekGPIOPollTest, ALineMayComeInPieces) {
    const Fifo button(path);
    const Polling polling(path, POLLIN);
    button.write("1");
    button.write("2\n1");
    EXPECT_EQ(polling.await(1), Values{12});
    button.write("\n");
    EXPECT_EQ(polling.await(2), (Values{12, 1}));
}

TEST_F(TarvekGPIOPollTest, WhatIsNoNumberIsDropped) {
    const Fifo button(path);
    const Polling polling(path, POLLIN);
    button.write("\nup\n" + std::string(100, 'x') + "\n99999999999\n1\n");
    EXPECT_EQ(polling.await(1), Values{1});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(TarvekGPIOPollTest, ATerminalWorksAsAButton) {
    PtyPair pty;
    const Polling polling(pty.path(), POLLIN);
    pty.send(std::string("1\n"));
    EXPECT_EQ(polling.await(1), Values{1});
}

TEST_F(TarvekGPIOPollTest, AnEndThatIsClosedEndsThePoll) {
    PtyPair pty;
    const Polling polling(pty.path(), POLLIN);
    pty.send(std::string("1\n"));
    polling.await(1);
    pty.hangUp();
    polling.awaitReturn();
}

TEST_F(TarvekGPIOPollTest, AStopEndsAPollThatNothingHappensIn) {
    std::ofstream(path) << "0\n";
    const Polling polling(path, POLLPRI);
    EXPECT_EQ(polling.await(0), Values{}) << "and the destructor joins it";
}

// A file on a disk is always readable, so that each look is an event.
TEST_F(TarvekGPIOPollTest, AFileIsReadFromItsBeginningAtEachEvent) {
    std::ofstream(path) << "1\n";
    const Polling polling(path, POLLIN);
    const Values values = polling.await(3);
    for (const int value : values)
        EXPECT_EQ(value, 1);
}

TEST_F(TarvekGPIOPollTest, AMissingFileIsOneWarning) {
    TarvekGPIOPoll poll(POLLPRI);
    for (int i = 0; i < 3; ++i)
        poll.poll(path, [](int) { FAIL(); });
    EXPECT_EQ(log.lines(), Lines{"Warn path: No such file or directory"});
}

TEST_F(TarvekGPIOPollTest, AFileThatIsThereAgainIsWarnedOfAnew) {
    TarvekGPIOPoll poll(POLLPRI);
    poll.poll(path, [](int) {});
    std::ofstream(path) << "0\n";
    poll.stop();
    poll.poll(path, [](int) {});
    unlink(path.c_str());
    poll.poll(path, [](int) {});
    EXPECT_EQ(log.lines().size(), 2u);
}

}  // namespace
