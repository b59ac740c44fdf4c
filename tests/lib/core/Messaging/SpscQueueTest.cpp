#include <gtest/gtest.h>
#include <memory>
#include <thread>

#include "core/Messaging/SpscQueue.h"

using tvk::SpscQueue;

TEST(SpscQueue, ItemsComeOutInTheirOrderHoweverManyWait) {
    SpscQueue<int> queue;
    int next = 0;
    int expected = 0;
    int item = 0;
    for (const int burst : {1, 15, 16, 17, 40, 600, 3, 5000, 1}) {
        for (int i = 0; i < burst; ++i)
            queue.push(next++);
        for (int i = 0; i < burst; ++i) {
            ASSERT_TRUE(queue.pop(item));
            ASSERT_EQ(item, expected++);
        }
        EXPECT_FALSE(queue.pop(item));
    }
}

TEST(SpscQueue, BlocksThatLieEmptyAreUsedAgainInTheRightOrder) {
    SpscQueue<int> queue;
    int next = 0;
    int expected = 0;
    int item = 0;
    // Some always wait, so that front and back go round the blocks apart from each other.
    for (int round = 0; round < 2000; ++round) {
        for (int i = 0; i < 3 + round % 40; ++i)
            queue.push(next++);
        for (int i = 0; i < 3 + (round + 20) % 40 && queue.pop(item); ++i)
            ASSERT_EQ(item, expected++);
    }
    while (queue.pop(item))
        ASSERT_EQ(item, expected++);
    EXPECT_EQ(expected, next);
}

TEST(SpscQueue, WhatNobodyTookIsFreedWithIt) {
    const auto item = std::make_shared<int>(1);
    {
        SpscQueue<std::shared_ptr<int>> queue;
        for (int i = 0; i < 100; ++i)
            queue.push(item);
        std::shared_ptr<int> taken;
        for (int i = 0; i < 30; ++i)
            queue.pop(taken);
        taken.reset();
        EXPECT_EQ(item.use_count(), 71);
    }
    EXPECT_EQ(item.use_count(), 1);
}

TEST(SpscQueue, TwoThreadsLoseAndDoubleNothing) {
    SpscQueue<int> queue;
    constexpr int kItems = 200000;
    std::thread producer([&] {
        for (int i = 0; i < kItems; ++i)
            queue.push(i);
    });
    int item = -1;
    for (int expected = 0; expected < kItems;) {
        if (!queue.pop(item)) {
            std::this_thread::yield();
            continue;
        }
        if (item != expected) break;
        ++expected;
    }
    producer.join();
    EXPECT_EQ(item, kItems - 1);
}
