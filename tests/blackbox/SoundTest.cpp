#include <algorithm>
#include <cmath>
#include <complex>
#include <gmock/gmock.h>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>

#include "blackbox/support/DeskRun.h"

using ::testing::Each;
using ::testing::SizeIs;

namespace {

using Sound = DeskRun;

// Amplitude of a frequency in the frames [from, from + frames): a whole number of its periods.
double amplitude(const Samples& samples, double frequencyHz, std::size_t from, std::size_t frames) {
    std::complex<double> sum;
    for (std::size_t i = from; i < from + frames; ++i)
        sum += static_cast<double>(samples[i]) *
               std::polar(1.0, -2.0 * std::numbers::pi * frequencyHz * static_cast<double>(i) / 44100.0);
    return 2.0 * std::abs(sum) / static_cast<double>(frames);
}

std::size_t firstDifference(const Samples& one, const Samples& other) {
    return static_cast<std::size_t>(std::mismatch(one.begin(), one.end(), other.begin()).first - one.begin());
}

}  // namespace

TEST_F(Sound, IsSilentWithoutAPreset) {
    const auto out = play("out", {"--in", guitar("guitar", noise(0.5f, 44100)), "--slot", "none"});
    EXPECT_THAT(out[0], SizeIs(2u * 44100u));
    EXPECT_THAT(out[0], Each(0.0f));
    EXPECT_THAT(out[1], Each(0.0f));
}

TEST_F(Sound, RunsForTheGuitarsLengthAndOneSecond) {
    EXPECT_THAT(play("out", {"--in", guitar("guitar", noise(0.1f, 1001)), "--slot", "0"})[0],
                SizeIs(1001u + 44100u));
}

TEST_F(Sound, RunsForTheSecondsGiven) {
    EXPECT_THAT(play("out", {"--in", guitar("guitar", noise(0.1f, 44100)), "--seconds", "0.25"})[0],
                SizeIs(11025));
}

TEST_F(Sound, FrameCapturedPlaysNinetySixFramesLater) {
    Samples click(4000, 0.0f);
    click[1003] = 0.02f;
    const auto out = play("out", {"--in", guitar("guitar", click), "--slot", kPassThrough});
    const auto first =
        std::find_if(out[0].begin(), out[0].end(), [](float sample) { return sample != 0.0f; });
    EXPECT_EQ(first - out[0].begin(), 1003 + static_cast<long>(kLatency));
    // At the height of the fade, which has been rising for more than 0.1 s.
    EXPECT_NEAR(*first, 0.02, 0.02 * 0.08);
}

TEST_F(Sound, FlagshipAnswersAfterTheLatencyAndNotBefore) {
    Samples click(8000, 0.0f);
    click[4003] = 0.02f;
    const auto quiet = play("quiet", {"--in", guitar("nothing", Samples(8000, 0.0f))});
    const auto struck = play("struck", {"--in", guitar("click", click)});
    const std::size_t answer = firstDifference(struck[0], quiet[0]);
    EXPECT_GE(answer, 4003 + kLatency);
    // Its filters hold the click back by less than two milliseconds.
    EXPECT_LT(answer, 4003 + kLatency + 88);
}

TEST_F(Sound, ChannelOneFeedsTheNormalInputAndChannelTwoTheVibratoInput) {
    const Samples normal = sine(441.0, 0.02f, 0.5);
    const Samples vibrato = sine(882.0, 0.01f, 0.5);
    const auto out = play("out", {"--in", guitar("guitar", normal, vibrato), "--slot", kPassThrough});
    // Late enough for the fade, over whole periods of both.
    EXPECT_NEAR(amplitude(out[0], 441.0, 17640, 4400), 0.02, 2e-5);
    EXPECT_NEAR(amplitude(out[0], 882.0, 17640, 4400), 0.0, 2e-5);
    EXPECT_NEAR(amplitude(out[1], 441.0, 17640, 4400), 0.0, 2e-5);
    EXPECT_NEAR(amplitude(out[1], 882.0, 17640, 4400), 0.01, 2e-5);
}

TEST_F(Sound, FadesInAlongAFourHertzCorner) {
    const auto out =
        play("out", {"--in", guitar("guitar", sine(1050.0, 0.03f, 1.5)), "--slot", kPassThrough});
    constexpr std::size_t kWindow = 420;  // ten periods
    const double full = amplitude(out[0], 1050.0, 60000, kWindow);
    EXPECT_NEAR(full, 0.03, 3e-5);
    const auto missing = [&](std::size_t from) {
        return 1.0 - amplitude(out[0], 1050.0, from, kWindow) / full;
    };
    // The fade began with the first block, so it is well on its way when the guitar starts.
    EXPECT_GT(missing(882), 0.01);
    for (const std::size_t from : {1764u, 2646u, 3528u}) {
        const double elapsed = static_cast<double>(from - 882) / kRateHz;
        const double expected = missing(882) * std::exp(-2.0 * std::numbers::pi * 4.0 * elapsed);
        EXPECT_NEAR(missing(from), expected, 0.02 * expected) << from;
    }
}

TEST_F(Sound, LoudGuitarIsTakenFromTheRobustRangeOnceTheEnvelopeHasRisen) {
    Samples loud(4410, 0.0f);
    const Samples tone = sine(441.0, 0.5f, 1.0);
    loud.insert(loud.end(), tone.begin(), tone.end());
    const auto out = play("out", {"--in", guitar("guitar", loud), "--slot", kPassThrough});
    // The sensitive range alone would clip far below: its undistorted swing is full scale over its gain.
    EXPECT_NEAR(amplitude(out[0], 441.0, 4410 + 22050 + 100, 4400), 0.5, 2e-3);
    EXPECT_NEAR(amplitude(out[0], 3.0 * 441.0, 4410 + 22050 + 100, 4400), 0.0, 1e-3);
    // At its onset the clipped range is still in use.
    const auto onset = out[0].begin() + 4410 + static_cast<long>(kLatency);
    EXPECT_LT(*std::max_element(onset, onset + 25), 0.4f);
}

TEST_F(Sound, QuietGuitarPassesWithoutDistortion) {
    const auto out = play("out", {"--in", guitar("guitar", sine(441.0, 0.01f, 1.0)), "--slot", kPassThrough});
    EXPECT_NEAR(amplitude(out[0], 441.0, 22000, 4400), 0.01, 1e-5);
    EXPECT_NEAR(amplitude(out[0], 882.0, 22000, 4400), 0.0, 1e-6);
    EXPECT_NEAR(amplitude(out[0], 1323.0, 22000, 4400), 0.0, 1e-6);
}

TEST_F(Sound, LoopStartsTheGuitarAgain) {
    const Samples guitarPart = noise(0.02f, 10000);
    const auto out = play(
        "out", {"--in", guitar("guitar", guitarPart), "--slot", kPassThrough, "--loop", "--seconds", "1"});
    ASSERT_THAT(out[0], SizeIs(44100));
    // The third time round against the fourth: the fade is over, the DC trackers have settled.
    for (std::size_t i = 0; i < 10000; ++i)
        ASSERT_NEAR(out[0][20000 + kLatency + i], out[0][30000 + kLatency + i], 1e-3);
    double energy = 0.0;
    for (std::size_t i = 30000; i < 40000; ++i)
        energy += out[0][i] * out[0][i];
    EXPECT_GT(energy, 0.5 * 10000 * 0.02 * 0.02 / 3.0);
}

TEST_F(Sound, KnobsReachTheAmplifier) {
    const std::string in = guitar("guitar", sine(441.0, 0.05f, 0.5));
    const auto shut = play("shut", {"--in", in, "--knob", "PB_0=0", "--knob", "PA_4=0"});
    const auto open = play("open", {"--in", in, "--knob", "PB_0=0.5", "--knob", "PA_4=0"});
    EXPECT_GT(amplitude(open[0], 441.0, 15000, 4400), 10.0 * amplitude(shut[0], 441.0, 15000, 4400));
    EXPECT_GT(amplitude(open[0], 441.0, 15000, 4400), 1e-3);
}

TEST_F(Sound, TwoRunsGiveTheSameBytes) {
    const std::vector<std::string> arguments = {"--in",    guitar("guitar", noise(0.3f, 30000)),
                                                "--fault", "xrun-capture@200",
                                                "--fault", "gone@400+20"};
    play("first", arguments);
    play("second", arguments);
    EXPECT_TRUE(readText(outFile("first")) == readText(outFile("second")));
}

TEST_F(Sound, ReportTellsWhatWasPlayed) {
    const auto out = play("out", {"--in", guitar("guitar", sine(441.0, 0.1f, 0.5)), "--seconds", "0.75"});
    const auto report = nlohmann::json::parse(readText(reportFile("out")));
    EXPECT_DOUBLE_EQ(report["seconds"], 33075.0 / 44100.0);
    EXPECT_EQ(report["blocks"], 1034);  // 33075 frames in periods of 32, the last begun
    EXPECT_EQ(report["xruns"], 0);
    // The audio thread, the tank, its tail and the cabinet's, with what each may take: a block, a block, 2048
    // samples, 128 samples.
    const std::map<std::string, double> deadlines = {{"AudioProcessor", 32e6 / 44100.0},
                                                     {"AudRvbFrontThrd", 32e6 / 44100.0},
                                                     {"AudRvbBackThrd", 2048e6 / 44100.0},
                                                     {"cabSim", 128e6 / 44100.0}};
    ASSERT_THAT(report["threads"], SizeIs(deadlines.size()));
    for (const auto& thread : report["threads"]) {
        ASSERT_TRUE(deadlines.contains(thread["name"])) << thread["name"];
        EXPECT_NEAR(thread["deadline_us"], deadlines.at(thread["name"]), 1e-3);
        EXPECT_GT(thread["p50_us"], 0.0);
        EXPECT_LE(thread["p50_us"], thread["p99_us"]);
        EXPECT_LE(thread["p99_us"], thread["max_us"]);
        EXPECT_LE(thread["mean_us"], thread["max_us"]);
        EXPECT_GE(thread["overruns"], 0);
    }
    for (std::size_t feed = 0; feed < 2; ++feed) {
        double peak = 0.0;
        double squares = 0.0;
        for (const float sample : out[feed]) {
            peak = std::max(peak, std::abs(static_cast<double>(sample)));
            squares += static_cast<double>(sample) * static_cast<double>(sample);
        }
        EXPECT_DOUBLE_EQ(report["peak"][feed], peak);
        EXPECT_NEAR(report["rms_dbfs"][feed], 10.0 * std::log10(squares / 33075.0), 1e-9);
    }
}
