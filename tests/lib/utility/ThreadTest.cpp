#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore>
#include <string>
#include <utility>

#include "support/LogRecorder.h"
#include "utility/Flaggable.h"
#include "utility/TarvekThread.h"
#include "utility/ThreadSched.h"

namespace {

constexpr const char* kFifteen = "fifteenletters!";
constexpr const char* kSixteen = "sixteen_letters!";

std::string ownName() {
    char name[64] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    return name;
}

// Counts its loops, and tells the test when it has run a given number of them.
class CountingThread : public TarvekThread {
public:
    explicit CountingThread(std::string name, int cpu = 0)
        : TarvekThread(49, cpu), wanted_(std::move(name)) {}
    ~CountingThread() override {
        stop();
        join();
    }

    std::atomic<int> inits{0};
    std::atomic<int> loops{0};
    std::binary_semaphore looped{0};
    std::string nameInLoop;  // written before looped is released

protected:
    void init() override {
        ++inits;
        setName(wanted_);
    }
    void loop() override {
        if (++loops != 3) {
            sched_yield();
            return;
        }
        nameInLoop = ownName();
        looped.release();
    }

private:
    const std::string wanted_;
};

class ThreadTest : public testing::Test {
protected:
    LogRecorder log;
};

TEST_F(ThreadTest, InitRunsOnceAndLoopUntilStopIsSeen) {
    CountingThread thread("worker");
    thread.start();
    thread.looped.acquire();
    thread.stop();
    thread.join();
    EXPECT_EQ(thread.inits, 1);
    const int loops = thread.loops;
    EXPECT_GE(loops, 3);
    EXPECT_TRUE(log.has("TarvekThread: exiting isRunning state"));
    EXPECT_TRUE(log.has("TarvekThreadUsage: thread: worker"));
    EXPECT_EQ(log.startingWith("TarvekThreadUsage: Hard Page Faults - Begin: ").size(), 1u);
    EXPECT_EQ(log.startingWith("TarvekThreadUsage: Soft Page Faults - Begin: ").size(), 1u);
}

TEST_F(ThreadTest, ANameOfFifteenCharactersIsSet) {
    CountingThread thread(kFifteen);
    thread.start();
    thread.looped.acquire();
    EXPECT_EQ(thread.nameInLoop, kFifteen);
    EXPECT_TRUE(log.startingWith("Error ").empty());
}

TEST_F(ThreadTest, ANameOfSixteenCharactersIsRefusedAndLeftUnset) {
    CountingThread thread(kSixteen);
    thread.start();
    thread.looped.acquire();
    EXPECT_EQ(thread.nameInLoop, ownName()) << "a new thread bears its creator's name";
    EXPECT_TRUE(log.has("Error thread name sixteen_letters! too long"));
}

TEST_F(ThreadTest, ARefusedNameLeavesTheOneBefore) {
    CountingThread thread(kSixteen);
    thread.setName("before");
    thread.start();
    thread.looped.acquire();
    EXPECT_EQ(thread.nameInLoop, "before");
}

TEST_F(ThreadTest, StartingAStartedThreadOnlyWarns) {
    CountingThread thread("worker");
    thread.start();
    thread.looped.acquire();
    thread.start();
    EXPECT_EQ(log.count("Warn thread already started"), 1);
    thread.stop();
    thread.join();
    EXPECT_EQ(thread.inits, 1);
}

TEST_F(ThreadTest, AStoppedThreadCanBeStartedAgain) {
    CountingThread thread("worker");
    thread.start();
    thread.looped.acquire();
    thread.stop();
    thread.start();
    thread.stop();
    thread.join();
    EXPECT_EQ(thread.inits, 2);
    EXPECT_FALSE(log.has("Warn thread already started"));
}

TEST_F(ThreadTest, DestructionEndsARunningThread) {
    {
        CountingThread thread("worker");
        thread.start();
        thread.looped.acquire();
    }
    const std::vector<std::string> lines = log.lines();
    const auto base = std::find(lines.begin(), lines.end(), "TarvekThread: destructor called");
    ASSERT_NE(base, lines.end());
    EXPECT_NE(std::find(base, lines.end(), "ITarvekThread: destructor called"), lines.end());
    EXPECT_TRUE(log.has("TarvekThread: exiting isRunning state"));
}

TEST_F(ThreadTest, AMissingProcessorOnlyWarnsAndTheThreadRuns) {
    CountingThread thread("worker", 1023);
    thread.start();
    thread.looped.acquire();
    thread.stop();
    thread.join();
    EXPECT_TRUE(log.has("Warn pthread_setaffinity_np error:"));
    EXPECT_TRUE(
        log.has("Warn The affinity bit mask contains no processors that are both present and "
                "accessible by the thread."));
}

TEST_F(ThreadTest, WithOrWithoutTheRightToRealTimeSchedulingTheThreadRunsAndTheLogSaysWhich) {
    CountingThread thread("worker");
    thread.start();
    thread.looped.acquire();
    thread.stop();
    thread.join();
    if (log.has("ThreadSched: Thread set with priority 49...")) {
        EXPECT_FALSE(log.has("Warn pthread_setschedparam error:"));
    } else {
        EXPECT_TRUE(log.has("Warn pthread_setschedparam error:"));
        EXPECT_TRUE(
            log.has("Warn The caller does not have appropriate privileges to set the"
                    "specified scheduling policy and parameters."));
    }
}

// Takes its work when poked and counts it.
class PokedThread : public Flaggable<TarvekThread> {
public:
    PokedThread() : Flaggable(49, 0) {}
    ~PokedThread() override {
        stop();
        join();
    }
    int work = 0;  // plain: the flag orders it
    int seen = 0;
    std::binary_semaphore done{0};

protected:
    void init() override {}
    void loop() override {
        if (!waitUntilFlagged()) return;
        seen = work;
        done.release();
    }
};

TEST_F(ThreadTest, APokedThreadSeesTheWorkWrittenBeforeThePoke) {
    PokedThread thread;
    thread.start();
    for (int i = 1; i <= 100; ++i) {
        thread.work = i;
        thread.raise();
        thread.done.acquire();
        ASSERT_EQ(thread.seen, i);
    }
}

TEST_F(ThreadTest, APokeBeforeTheStartIsNotLost) {
    PokedThread thread;
    thread.work = 5;
    thread.raise();
    EXPECT_TRUE(thread.isFlagged());
    thread.start();
    thread.done.acquire();
    EXPECT_EQ(thread.seen, 5);
}

TEST_F(ThreadTest, StopWakesASleeperThatHasNoWork) {
    PokedThread thread;
    thread.start();
    thread.stop();
    thread.join();
    EXPECT_EQ(thread.seen, 0);
}

}  // namespace
