#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <ostream>

#include "blackbox/support/DeskRun.h"

namespace {

struct Trouble {
    const char* name;
    const char* fault;
    std::size_t lostPeriods;  // between the failure and the restart
    long xruns;
};

void PrintTo(const Trouble& trouble, std::ostream* stream) {
    *stream << trouble.fault;
}

constexpr std::size_t kFaultyPeriod = 1000;

class Recovery : public DeskRun, public ::testing::WithParamInterface<Trouble> {};

}  // namespace

// The failure comes to light at the end of its period; the restart writes two periods of silence, and the
// block that was waiting goes out behind them. From then on everything is where it was.
TEST_P(Recovery, RestartsWithTwoPeriodsOfSilenceAndTheOldLatency) {
    const Trouble trouble = GetParam();
    const std::string in = guitar("guitar", noise(0.02f, 66150));
    const auto whole = play("whole", {"--in", in, "--slot", kPassThrough});
    EXPECT_EQ(xruns(), 0);
    const auto broken = play("broken", {"--in", in, "--slot", kPassThrough, "--fault", trouble.fault});
    EXPECT_EQ(xruns(), trouble.xruns);
    EXPECT_EQ(nlohmann::json::parse(readText(reportFile("broken")))["xruns"], trouble.xruns);

    const std::size_t failure = (kFaultyPeriod + 1) * kPeriod;
    const std::size_t restart = failure + trouble.lostPeriods * kPeriod;
    ASSERT_EQ(broken[0].size(), whole[0].size());
    for (std::size_t i = 0; i < failure; ++i)
        ASSERT_EQ(broken[0][i], whole[0][i]) << i;
    for (std::size_t i = failure; i < restart + 2 * kPeriod; ++i)
        ASSERT_EQ(broken[0][i], 0.0f) << i;
    const auto waiting = broken[0].begin() + static_cast<long>(restart + 2 * kPeriod);
    EXPECT_TRUE(std::any_of(waiting, waiting + kPeriod, [](float sample) { return sample != 0.0f; }));
    // What was lost passed the DC trackers by: 5 Hz, so they agree again after a fraction of a second.
    for (std::size_t i = restart + 3 * kPeriod; i < whole[0].size(); ++i)
        ASSERT_NEAR(broken[0][i], whole[0][i], 2e-3) << i;
    for (std::size_t i = restart + 22050; i < whole[0].size(); ++i)
        ASSERT_NEAR(broken[0][i], whole[0][i], 1e-6) << i;
}

INSTANTIATE_TEST_SUITE_P(Each, Recovery,
                         ::testing::Values(Trouble{"CaptureXrun", "xrun-capture@1000", 0, 1},
                                           Trouble{"PlaybackXrun", "xrun-playback@1000", 0, 1},
                                           Trouble{"ShortRead", "short-read@1000", 0, 1},
                                           // The first read, then in every period two writes and a read.
                                           Trouble{"Gone", "gone@1000+10", 10, 1 + 3 * 10}),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(DeskRun, EveryFaultOfSeveralCounts) {
    play("out", {"--in", guitar("guitar", noise(0.02f, 44100)), "--slot", kPassThrough, "--fault",
                 "xrun-capture@100", "--fault", "xrun-capture@101", "--fault", "xrun-playback@300", "--fault",
                 "short-read@500"});
    EXPECT_EQ(xruns(), 4);
}
