// The process as a whole: each test forks a child that runs the application on the card of the tests and
// writes its two streams into one pipe.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "proj/models/Model.h"
#include "proj/models/audio/BlockTimer.h"
#include "proj/runner/Runner.h"
#include "support/TemporaryFolder.h"
#include "support/card/TestCard.h"
#include "utility/Log.h"

namespace {

using Lines = std::vector<std::string>;

long threadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

// True when no more threads are left than there were. The kernel may list a joined thread a moment longer.
bool endedAllBut(long threads) {
    int tries = 100000;
    while (threadCount() > threads && --tries > 0)
        sched_yield();
    return tries > 0;
}

// The hardware's pace: one period of real time before each.
void paceCard(TestCard& card) {
    card.beforePeriod = [] {
        const timespec period{0, 725624};
        clock_nanosleep(CLOCK_MONOTONIC, 0, &period, nullptr);
    };
}

class RunnerTest : public testing::Test {
protected:
    RunnerTest() {
        platform = tvk::productPlatform();
        platform.homeRoot = folder.path();
        platform.userData = folder.path();
        platform.uartDevice = folder.file("no uart");
        platform.hidDevice = folder.file("no gadget");
        platform.gpioRoot = folder.file("no gpio");
        platform.runShell = [](const std::string&) { return 1; };
        std::ofstream(folder.file("product_profile.json"))
            << R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": 12})";
        paceCard(scope.card);
    }
    ~RunnerTest() override {
        if (output) std::fclose(output);
    }

    // Statuses of a child, beside the application's own.
    static constexpr int kThreadsLeft = 71;

    void start() {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        // The child would inherit, and say, what audio threads of earlier tests have left.
        tvk::log::drainRealtimeRing();
        child = fork();
        ASSERT_NE(child, -1);
        if (child == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            close(ends[0]);
            close(ends[1]);
            // A sanitizer starts a thread of its own with the first.
            std::thread([] {}).join();
            const long threadsBefore = threadCount();
            const int status = tvk::applicationMain(platform);
            std::fflush(stdout);
            _exit(status == 0 && !endedAllBut(threadsBefore) ? kThreadsLeft : status);
        }
        close(ends[1]);
        output = fdopen(ends[0], "r");
    }
    // Reads on to this line; false when the child ended before.
    bool readTo(const std::string& wanted) {
        std::string line;
        while (readLine(line))
            if (line == wanted) return true;
        return false;
    }
    // The exit status when the child has said all; -1 when it did not exit by itself.
    int finish() {
        std::string line;
        while (readLine(line)) {
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    bool has(const std::string& line) const { return std::count(lines.begin(), lines.end(), line) > 0; }
    Lines starting(const std::string& text) const {
        Lines found;
        for (const std::string& line : lines)
            if (line.rfind(text, 0) == 0) found.push_back(line);
        return found;
    }

    TemporaryFolder folder;
    CardScope scope;
    tvk::Platform platform;
    pid_t child = -1;
    Lines lines;

private:
    bool readLine(std::string& line) {
        char buffer[1024];
        if (!std::fgets(buffer, sizeof buffer, output)) return false;
        line = buffer;
        if (!line.empty() && line.back() == '\n') line.pop_back();
        lines.push_back(line);
        return true;
    }
    std::FILE* output = nullptr;
};

TEST_F(RunnerTest, StartsWithItsVersionAndBuildsInOrder) {
    platform.session = [](Model&, tvk::StopSignal&) {};
    start();
    EXPECT_EQ(finish(), 0);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "version: 2.0.18-0-gdaefaf3");
    EXPECT_EQ(lines[1], "main: Constructing Model");
    EXPECT_EQ(starting("main: "),
              (Lines{"main: Constructing Model", "main: Constructing Factory IR Model",
                     "main: Constructing User IR Model", "main: Constructing Global settings Model",
                     "main: Constructing Cabsim Model", "main: Constructing Controller",
                     "main: Construction System Info Model", "main: Constructing View",
                     "main: Constructing Message Handler", "main: Constructing Message Processor",
                     "main: completed main"}));
    const auto completed = std::find(lines.begin(), lines.end(), "main: completed main");
    ASSERT_NE(completed, lines.end());
    EXPECT_EQ(*std::next(completed), "Press Ctrl+C to halt...");
    EXPECT_LT(std::find(lines.begin(), lines.end(), "Model: Constructor complete"), completed);
}

TEST_F(RunnerTest, SigUsr1EndsTheProcessWithStatus0AfterAllDestructorsAndWithAllThreadsJoined) {
    start();
    ASSERT_TRUE(readTo("Press Ctrl+C to halt..."));
    kill(child, SIGUSR1);
    EXPECT_EQ(finish(), 0);
    const auto at = [this](const char* line) { return std::find(lines.begin(), lines.end(), line); };
    EXPECT_LT(at("ITarvekThread: destructor called"), at("AudioProcessor: destructor called"));
    EXPECT_LT(at("AudioProcessor: destructor called"), at("AudioAlsaPcm: calling close"));
    EXPECT_NE(at("AudioAlsaPcm: calling close"), lines.end());
    EXPECT_NE(at("TarvekThread: exiting isRunning state"), lines.end());
}

TEST_F(RunnerTest, SigIntEndsTheProcessWithStatus0AndWithoutDestructors) {
    start();
    ASSERT_TRUE(readTo("Press Ctrl+C to halt..."));
    kill(child, SIGINT);
    EXPECT_EQ(finish(), 0);
    EXPECT_FALSE(has("AudioProcessor: destructor called"));
    EXPECT_FALSE(has("TarvekThread: exiting isRunning state"));
}

TEST_F(RunnerTest, SigIntDuringConstructionEndsTheProcessToo) {
    scope.card.beforePeriod = [] { pause(); };  // a device that never delivers
    start();
    ASSERT_TRUE(readTo("Model: Constructor called"));
    kill(child, SIGINT);
    EXPECT_EQ(finish(), 0);
    EXPECT_FALSE(has("Model: Constructor complete"));
}

// Sends the stop from the first block, while the constructors still run.
class StopAtFirstBlock : public BlockTimer {
public:
    void blockStarts() override {
        if (!sent_) kill(getpid(), SIGUSR1);
        sent_ = true;
    }
    void blockEnds() override {}

private:
    bool sent_ = false;
};

TEST_F(RunnerTest, AStopBeforeTheWaitIsNotLostAndEndsNoConstructor) {
    StopAtFirstBlock timer;
    platform.blockTimer = &timer;
    start();
    EXPECT_EQ(finish(), 0);
    EXPECT_TRUE(has("Press Ctrl+C to halt..."));
    EXPECT_TRUE(has("AudioProcessor: destructor called"));
}

TEST_F(RunnerTest, ASessionCanAskWhetherTheStopHasArrived) {
    platform.session = [](Model&, tvk::StopSignal& stop) {
        std::printf("before %d\n", stop.arrived());
        kill(getpid(), SIGUSR1);
        std::printf("after %d\n", stop.arrived());
        stop.wait();
        std::printf("waited %d\n", stop.arrived());
    };
    start();
    EXPECT_EQ(finish(), 0);
    EXPECT_TRUE(has("before 0"));
    EXPECT_TRUE(has("after 1"));
    EXPECT_TRUE(has("waited 1"));
}

TEST_F(RunnerTest, EveryThreadButMainBlocksTheStop) {
    platform.session = [](Model&, tvk::StopSignal&) {
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            std::ifstream status(task.path() / "status");
            for (std::string line; std::getline(status, line);)
                if (line.rfind("SigBlk:", 0) == 0) {
                    const unsigned long long mask = std::stoull(line.substr(7), nullptr, 16);
                    std::printf("blocked %s %llu\n", name.c_str(), (mask >> (SIGUSR1 - 1)) & 1);
                }
        }
    };
    start();
    EXPECT_EQ(finish(), 0);
    EXPECT_TRUE(has("blocked AudioProcessor 1"));
    EXPECT_TRUE(has("blocked LogWriter 1"));
}

TEST_F(RunnerTest, WithoutAPanelTheEngineRunsOnAndTheSettersHaveNoEffect) {
    platform.session = [](Model& model, tvk::StopSignal&) {
        model.setNormalVolume(0.5f);
        model.setCabsim("none");
        std::printf("xruns %ld\n", model.getXrunCount());
    };
    start();
    EXPECT_EQ(finish(), 0);
    EXPECT_TRUE(has("Model: setNormalVolume(0.500)"));
    EXPECT_TRUE(has("xruns 0"));
    EXPECT_TRUE(starting("UIStdDisplayDspUnit").empty());
}

TEST_F(RunnerTest, AnExceptionLeavesTheRunnerAsALogLineAndAStatusThatIsNot0) {
    scope.card.rateHz = 48000;
    start();
    EXPECT_EQ(finish(), 1);
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.rfind("Error ", 0) == 0 &&
               line.find(": setHwParams failed for playbackHandle") != std::string::npos;
    }));
    EXPECT_FALSE(has("main: completed main"));
}

TEST_F(RunnerTest, AnExceptionInTheSessionUnwindsTheObjects) {
    platform.session = [](Model&, tvk::StopSignal&) { throw std::runtime_error("out of paper"); };
    start();
    EXPECT_EQ(finish(), 1);
    EXPECT_TRUE(has("AudioProcessor: destructor called"));
    EXPECT_EQ(lines.back().substr(lines.back().rfind(": ") + 2), "out of paper");
}

TEST_F(RunnerTest, LinesOfTheAudioThreadAreWritten) {
    // The wait for the first block lasts 100 ms: the failure lies before its end.
    scope.card.onCapture = [](long call, long frames) { return call == 5 ? -EPIPE : frames; };
    start();
    ASSERT_TRUE(readTo("Press Ctrl+C to halt..."));
    kill(child, SIGUSR1);
    EXPECT_EQ(finish(), 0);
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("stream recovery, hw:0,0 capture: Broken pipe(-32)") != std::string::npos;
    }));
    EXPECT_TRUE(has("AudioAlsaPcm: Detected 1 xruns."));
}

TEST(ProductPlatform, IsTheAmplifiersOwnPathsAndDevices) {
    const tvk::Platform platform = tvk::productPlatform();
    EXPECT_EQ(platform.homeRoot, "/home/root");
    EXPECT_EQ(platform.userData, "/mnt/user-data");
    EXPECT_EQ(platform.captureDevice, "hw:0,0");
    EXPECT_EQ(platform.playbackDevice, "hw:0,0");
    EXPECT_EQ(platform.clock, nullptr);
    ASSERT_TRUE(platform.session);
    EXPECT_EQ(WEXITSTATUS(platform.runShell("exit 3")), 3);
}

}  // namespace
