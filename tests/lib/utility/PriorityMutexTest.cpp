#include <gtest/gtest.h>
#include <mutex>
#include <system_error>
#include <thread>

#include "utility/PriorityMutex.h"

namespace {

bool anotherThreadGets(tvk::PriorityMutex& mutex) {
    bool got = false;
    std::thread([&] {
        got = mutex.try_lock();
        if (got) mutex.unlock();
    }).join();
    return got;
}

TEST(PriorityMutexTest, KeepsOthersOutWhileItIsHeld) {
    tvk::PriorityMutex mutex;
    {
        const std::lock_guard lock(mutex);
        EXPECT_FALSE(anotherThreadGets(mutex));
    }
    EXPECT_TRUE(anotherThreadGets(mutex));
}

TEST(PriorityMutexTest, RefusesItsHolderASecondTime) {
    tvk::PriorityMutex mutex;
    const std::lock_guard lock(mutex);
    EXPECT_THROW(mutex.lock(), std::system_error);
}

TEST(PriorityMutexTest, TheRecursiveOneIsFreeAfterAsManyUnlocksAsLocks) {
    tvk::RecursivePriorityMutex mutex;
    mutex.lock();
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
    mutex.unlock();
    EXPECT_FALSE(anotherThreadGets(mutex));
    mutex.unlock();
    EXPECT_TRUE(anotherThreadGets(mutex));
}

TEST(PriorityMutexTest, NothingIsLostWhenTwoThreadsCountUnderIt) {
    tvk::PriorityMutex mutex;
    long count = 0;
    const auto add = [&] {
        for (int i = 0; i < 20000; ++i) {
            const std::lock_guard lock(mutex);
            ++count;
        }
    };
    std::thread other(add);
    add();
    other.join();
    EXPECT_EQ(count, 40000);
}

}  // namespace
