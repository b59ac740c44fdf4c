#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "utility/Log.h"
#include "utility/RealtimeThread.h"

namespace {

class Recorder : public tvk::log::Sink {
public:
    void debugLine(const char* tag, const char* text) override {
        lines.push_back(std::string(tag) + ": " + text);
    }
    void diagnosticLine(tvk::log::Severity severity, const char*, int, const char* text) override {
        lines.push_back(std::string(tvk::log::severityName(severity)) + " " + text);
    }
    std::vector<std::string> lines;
};

class LogTest : public testing::Test {
protected:
    LogTest() { before_ = tvk::log::setSink(&recorder); }
    ~LogTest() override {
        tvk::log::setSink(before_);
        tvk::log::enableDebug(false);
    }
    Recorder recorder;

private:
    tvk::log::Sink* before_;
};

TEST_F(LogTest, DebugLinesAppearOnlyWhileTheSwitchIsOn) {
    tvk::log::debug("tag", "hidden %d", 1);
    tvk::log::enableDebug(true);
    tvk::log::debug("tag", "shown %d", 2);
    EXPECT_EQ(recorder.lines, std::vector<std::string>{"tag: shown 2"});
}

TEST_F(LogTest, DiagnosticsAppearWhateverTheSwitch) {
    TVK_WARN("level %s", "low");
    TVK_ERROR("gone");
    EXPECT_EQ(recorder.lines, (std::vector<std::string>{"Warn level low", "Error gone"}));
}

TEST_F(LogTest, LinesOfARealTimeThreadWaitInTheRingUntilItIsDrained) {
    {
        tvk::RealtimeThreadScope realtime;
        TVK_WARN("late %d", 7);
    }
    EXPECT_TRUE(recorder.lines.empty());
    EXPECT_EQ(tvk::log::drainRealtimeRing(), 1);
    EXPECT_EQ(recorder.lines, std::vector<std::string>{"Warn late 7"});
}

TEST_F(LogTest, AFullRingDropsAndCountsLines) {
    const unsigned long before = tvk::log::droppedRealtimeLines();
    {
        tvk::RealtimeThreadScope realtime;
        for (int i = 0; i < 1000; ++i)
            TVK_WARN("line %d", i);
    }
    const int kept = tvk::log::drainRealtimeRing();
    EXPECT_GT(kept, 0);
    EXPECT_EQ(tvk::log::droppedRealtimeLines() - before, 1000u - static_cast<unsigned>(kept));
    EXPECT_EQ(recorder.lines.front(), "Warn line 0");
}

TEST_F(LogTest, LinesOfSeveralRealTimeThreadsArriveWholeAndEachThreadsInOrder) {
    constexpr int kThreads = 4;
    constexpr int kLines = 30;
    for (int round = 0; round < 20; ++round) {
        recorder.lines.clear();
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t) {
            threads.emplace_back([t] {
                const tvk::RealtimeThreadScope realtime;
                for (int i = 0; i < kLines; ++i)
                    TVK_WARN("%d %d", t, i);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(tvk::log::drainRealtimeRing(), kThreads * kLines);
        std::vector<int> next(kThreads, 0);
        for (const std::string& line : recorder.lines) {
            int t = 0;
            int i = 0;
            ASSERT_EQ(std::sscanf(line.c_str(), "Warn %d %d", &t, &i), 2) << line;
            EXPECT_EQ(i, next.at(static_cast<std::size_t>(t))++);
        }
        EXPECT_EQ(next, std::vector<int>(kThreads, kLines));
    }
}

}  // namespace
