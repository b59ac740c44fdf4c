#include <gtest/gtest.h>
#include <sched.h>
#include <semaphore>
#include <string>
#include <thread>
#include <unistd.h>

#include "support/LogRecorder.h"
#include "utility/ThreadSched.h"
#include "utility/scheduler.h"

namespace {

// A standard thread that stays alive until the test is done with it.
class Idler {
public:
    Idler() : thread([this] { release_.acquire(); }) {}
    ~Idler() {
        release_.release();
        thread.join();
    }
    std::string name() {
        char text[64] = {};
        pthread_getname_np(thread.native_handle(), text, sizeof text);
        return text;
    }

private:
    std::binary_semaphore release_{0};

public:
    std::thread thread;
};

class ThreadSchedTest : public testing::Test {
protected:
    LogRecorder log;
    Idler idler;
};

TEST_F(ThreadSchedTest, PolicyCodesMapToTheKernelsPolicies) {
    using tvk::ThreadSched::policyOfCode;
    EXPECT_EQ(policyOfCode(0), SCHED_OTHER);
    EXPECT_EQ(policyOfCode(1), SCHED_FIFO);
    EXPECT_EQ(policyOfCode(2), SCHED_RR);
    EXPECT_EQ(policyOfCode(3), SCHED_BATCH);
    EXPECT_EQ(policyOfCode(4), SCHED_OTHER);
    EXPECT_EQ(policyOfCode(5), SCHED_IDLE);
    EXPECT_EQ(policyOfCode(99), SCHED_OTHER);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ThreadSchedTest, DeadlineSchedulingIsRefusedWithAWarning) {
    EXPECT_EQ(tvk::ThreadSched::policyOfCode(6), SCHED_OTHER);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Warn SCHED_DEADLINE not supported."});
}

TEST_F(ThreadSchedTest, ANameOfFifteenCharactersIsSet) {
    tvk::ThreadSched::setNameAndScheduling(idler.thread, "fifteenletters!", 0, 0);
    EXPECT_EQ(idler.name(), "fifteenletters!");
    EXPECT_EQ(log.lines(), std::vector<std::string>{"ThreadSched: Thread set with priority 0..."});
}

TEST_F(ThreadSchedTest, ABadNameIsAnErrorAndTheCallGoesOn) {
    const std::string before = idler.name();
    tvk::ThreadSched::setNameAndScheduling(idler.thread, "sixteen_letters!", 0, 0);
    tvk::ThreadSched::setNameAndScheduling(idler.thread, "", 0, 0);
    EXPECT_EQ(idler.name(), before);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"Error Thread name too long: sixteen_letters!.",
                                                     "ThreadSched: Thread set with priority 0...",
                                                     "Error Thread must have a non-empty name.",
                                                     "ThreadSched: Thread set with priority 0..."}));
}

TEST_F(ThreadSchedTest, TheCallingThreadCanNameItself) {
    std::string name;
    std::thread([&name] {
        tvk::ThreadSched::setNameAndScheduling("self", 0, 0);
        char text[64] = {};
        pthread_getname_np(pthread_self(), text, sizeof text);
        name = text;
    }).join();
    EXPECT_EQ(name, "self");
}

TEST_F(ThreadSchedTest, PrioritiesAreLimitedToThePolicysRange) {
    using tvk::scheduler::clampPriority;
    EXPECT_EQ(clampPriority(SCHED_FIFO, 100), 99);
    EXPECT_EQ(clampPriority(SCHED_FIFO, 0), 1);
    EXPECT_EQ(clampPriority(SCHED_FIFO, 99), 99);
    EXPECT_EQ(clampPriority(SCHED_FIFO, 1), 1);
    EXPECT_EQ(clampPriority(SCHED_OTHER, 45), 0);
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"ThreadSched: Invalid priority value (100), setting to max value.",
                                        "ThreadSched: Invalid priority value (0), setting to min value.",
                                        "ThreadSched: Invalid priority value (45), setting to max value."}));
}

TEST_F(ThreadSchedTest, TheFirstProcessorIsTakenAndOneBeyondTheSetIsRefused) {
    tvk::ThreadSched::setAffinity(idler.thread, 0);
    cpu_set_t set;
    ASSERT_EQ(pthread_getaffinity_np(idler.thread.native_handle(), sizeof set, &set), 0);
    EXPECT_EQ(CPU_COUNT(&set), 1);
    EXPECT_TRUE(CPU_ISSET(0, &set));
    EXPECT_EQ(log.startingWith("ThreadSched: Thread ").size(), 1u);

    log.clear();
    tvk::ThreadSched::setAffinity(idler.thread, 1024);
    EXPECT_EQ(log.lines().front(), "Warn pthread_setaffinity_np error:");
    ASSERT_EQ(pthread_getaffinity_np(idler.thread.native_handle(), sizeof set, &set), 0);
    EXPECT_TRUE(CPU_ISSET(0, &set)) << "a refused affinity leaves the thread where it is";
}

TEST_F(ThreadSchedTest, ANewThreadWhoseProcessorDoesNotExistIsNotLeftOnItsStartersOwn) {
    cpu_set_t all;
    ASSERT_EQ(pthread_getaffinity_np(pthread_self(), sizeof all, &all), 0);
    cpu_set_t found;
    CPU_ZERO(&found);
    std::thread starter([&] {
        tvk::ThreadSched::setAffinity(0);
        tvk::ThreadSched::start([&found] { pthread_getaffinity_np(pthread_self(), sizeof found, &found); },
                                "unbound", 0, 0, 1000)
            .join();
    });
    starter.join();
    EXPECT_EQ(CPU_COUNT(&found), CPU_COUNT(&all));
}

TEST_F(ThreadSchedTest, AnUnknownPolicyWarnsWithTheReason) {
    EXPECT_FALSE(tvk::scheduler::setThreadScheduling(idler.thread.native_handle(), 12345, 0));
    EXPECT_TRUE(log.has("Warn pthread_setschedparam error:"));
    EXPECT_TRUE(
        log.has("Warn policy is not a recognized policy, or param does not make"
                "sense for the policy."));
}

TEST_F(ThreadSchedTest, ARealTimePolicyIsSetOnlyWhereItIsSaidToBeAndNeverInABuildWithoutThem) {
    const bool isSet = tvk::scheduler::setThreadScheduling(idler.thread.native_handle(), SCHED_FIFO, 1);
    int policy = -1;
    sched_param parameters{};
    ASSERT_EQ(pthread_getschedparam(idler.thread.native_handle(), &policy, &parameters), 0);
    EXPECT_EQ(policy, isSet ? SCHED_FIFO : SCHED_OTHER);
    EXPECT_TRUE(tvk::scheduler::kMayBeRealTime || !isSet);
}

TEST_F(ThreadSchedTest, TheProcessesTwinSpeaksOfTheProcess) {
    EXPECT_TRUE(tvk::scheduler::setProcessScheduling(0, SCHED_OTHER, 0));
    EXPECT_TRUE(log.has("ThreadSched: Process 0 set with priority 0..."));
    EXPECT_FALSE(tvk::scheduler::setProcessScheduling(0, 12345, 0));
    EXPECT_TRUE(log.has("Warn sched_setscheduler error:"));
    // Process ids stay below 2^22 on Linux, so that none has this number.
    EXPECT_FALSE(tvk::scheduler::setProcessScheduling(1 << 30, SCHED_OTHER, 0));
    EXPECT_TRUE(log.has("Warn No thread with the ID 1073741824 could be found."));
}

TEST_F(ThreadSchedTest, NewThreadsTakeTheDefaultStackSize) {
    pthread_attr_t before;
    ASSERT_EQ(pthread_getattr_default_np(&before), 0);
    constexpr size_t kBytes = 4 * 256 * 1024;  // large enough for any sanitizer's minimum
    tvk::ThreadSched::setDefaultStackSize(kBytes);
    size_t bytes = 0;
    std::thread([&bytes] {
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstacksize(&attributes, &bytes);
        pthread_attr_destroy(&attributes);
    }).join();
    pthread_setattr_default_np(&before);
    pthread_attr_destroy(&before);
    EXPECT_EQ(bytes, kBytes);
}

}  // namespace
