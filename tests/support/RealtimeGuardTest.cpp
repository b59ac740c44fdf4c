#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

// Keeps the compiler from leaving out an allocation that nothing reads.
void* volatile escape;

TEST(RealtimeGuard, ArithmeticOnARealTimeThreadIsNoViolation) {
    const RealtimeGuard guard;
    std::vector<float> block(32, 1.0f);
    {
        const tvk::RealtimeThreadScope realtime;
        for (float& sample : block)
            sample *= 0.5f;
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

TEST(RealtimeGuard, EveryWayToAllocateIsSeen) {
    const RealtimeGuard guard;
    long allocations = 0;
    {
        const tvk::RealtimeThreadScope realtime;
        escape = std::malloc(10);
        std::free(escape);
        escape = std::calloc(2, 5);
        escape = std::realloc(escape, 1000);
        std::free(escape);
        escape = std::aligned_alloc(64, 64);
        std::free(escape);
        auto object = std::make_unique<int>(3);
        escape = object.get();
        allocations = guard.violations().allocations;
    }
    // A sanitizer does not announce what realloc does.
    EXPECT_GE(allocations, RealtimeGuard::seesLocksAndSystemCalls() ? 5 : 4);
    EXPECT_GE(guard.violations().frees, 4);
}

TEST(RealtimeGuard, LocksWritesAndSleepsAreSeenWithoutSanitizers) {
    const RealtimeGuard guard;
    std::mutex mutex;
    {
        const tvk::RealtimeThreadScope realtime;
        mutex.lock();
        mutex.unlock();
        EXPECT_EQ(write(STDOUT_FILENO, "", 0), 0);
        usleep(1);
    }
    const RealtimeGuard::Violations seen = guard.violations();
    if (RealtimeGuard::seesLocksAndSystemCalls()) {
        EXPECT_EQ(seen.locks, 1);
        EXPECT_EQ(seen.systemCalls, 2);
    } else {
        EXPECT_EQ(seen.locks + seen.systemCalls, 0);
    }
}

TEST(RealtimeGuard, OtherThreadsMayDoWhatTheyLike) {
    const RealtimeGuard guard;
    escape = std::malloc(100);
    std::free(escape);
    std::thread other([] {
        escape = std::malloc(100);
        std::free(escape);
    });
    other.join();
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

TEST(RealtimeGuard, AViolationOnAnotherRealTimeThreadIsSeen) {
    const RealtimeGuard guard;
    std::thread audio([] {
        const tvk::RealtimeThreadScope realtime;
        escape = std::malloc(100);
        std::free(escape);
    });
    audio.join();
    EXPECT_EQ(guard.violations().allocations, 1);
    EXPECT_EQ(guard.violations().frees, 1);
}

TEST(RealtimeGuard, EachGuardCountsFromZero) {
    {
        const RealtimeGuard first;
        const tvk::RealtimeThreadScope realtime;
        escape = std::malloc(100);
        std::free(escape);
    }
    const RealtimeGuard second;
    EXPECT_EQ(second.violations(), RealtimeGuard::Violations{});
}

}  // namespace
