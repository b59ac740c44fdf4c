#include <chrono>
#include <gtest/gtest.h>
#include <vector>

#include "support/NotedClock.h"
#include "utility/Clock.h"

using namespace std::chrono_literals;

TEST(Clock, SleepsAStepBeforeEachQuestionForWork) {
    NotedClock clock;
    std::vector<std::size_t> sleepsWhenAsked;
    clock.sleepUntilWork(3ms, [&] {
        sleepsWhenAsked.push_back(clock.sleeps.size());
        return sleepsWhenAsked.size() == 4;
    });
    EXPECT_EQ(sleepsWhenAsked, (std::vector<std::size_t>{1, 2, 3, 4}));
    EXPECT_EQ(clock.sleeps, std::vector<std::chrono::nanoseconds>(4, 3ms));
}
