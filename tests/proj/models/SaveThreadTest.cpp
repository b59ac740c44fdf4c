#include <atomic>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <semaphore>
#include <string>

#include "proj/models/SaveThread.h"
#include "support/LogRecorder.h"

namespace {

using tvk::SaveThread;

// A write that waits to be let through.
class HeldWrite {
public:
    bool write() {
        begun_.release();
        let_.acquire();
        ++written;
        return answer;
    }
    void awaitBegin() { begun_.acquire(); }
    void let() { let_.release(); }

    std::atomic<int> written{0};
    std::atomic<bool> answer{true};

private:
    std::counting_semaphore<> begun_{0};
    std::counting_semaphore<> let_{0};
};

class SaveThreadTest : public testing::Test {
protected:
    LogRecorder log;
    HeldWrite held;
};

TEST_F(SaveThreadTest, ARequestIsWritten) {
    int written = 0;
    {
        SaveThread thread("Save", [&] { return ++written > 0; });
        thread.request();
        thread.finishPending();
        EXPECT_EQ(written, 1);
    }
    EXPECT_EQ(written, 1) << "nothing is written without a request";
}

TEST_F(SaveThreadTest, WhatIsPendingAtTheEndIsStillWritten) {
    {
        SaveThread thread("Save", [&] { return held.write(); });
        thread.request();
        held.awaitBegin();
        thread.request();
        held.let();
        held.let();
    }
    EXPECT_EQ(held.written, 2);
}

TEST_F(SaveThreadTest, RequestsThatComeWhileOneIsPendingAreOne) {
    {
        SaveThread thread("Save", [&] { return held.write(); });
        thread.request();
        held.awaitBegin();
        for (int i = 0; i < 5; ++i)
            thread.request();
        held.let();
        held.let();
    }
    EXPECT_EQ(held.written, 2);
}

TEST_F(SaveThreadTest, WhoWaitsIsToldTheAnswerOfAWriteThatBeganAfterHisRequest) {
    SaveThread thread("Save", [&] { return held.write(); });
    thread.request();
    held.awaitBegin();
    held.answer = false;
    std::future<bool> answer = std::async(std::launch::async, [&] { return thread.requestAndWait(); });
    held.let();
    held.awaitBegin();
    EXPECT_EQ(held.written, 1);
    held.let();
    EXPECT_FALSE(answer.get());
    EXPECT_EQ(held.written, 2);
    held.answer = true;
    held.let();
    EXPECT_TRUE(thread.requestAndWait());
}

TEST_F(SaveThreadTest, NothingPendingIsFinishedAtOnce) {
    SaveThread thread("Save", [&] { return held.write(); });
    thread.finishPending();
    EXPECT_EQ(held.written, 0);
}

TEST_F(SaveThreadTest, TheThreadHasItsNameAndItsPriority) {
    const SaveThread thread("SaveSomething", [] { return true; });
    bool isNamed = false;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        isNamed = isNamed || name == "SaveSomething";
    }
    EXPECT_TRUE(isNamed);
    const bool mayBeUrgent = log.startingWith("Warn pthread_setschedparam error:").empty();
    EXPECT_EQ(mayBeUrgent, log.startingWith("ThreadSched: Thread set with priority 45").size() == 1);
}

}  // namespace
