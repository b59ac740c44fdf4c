#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "algorithms/amp/ArvelReverb65Tonestack.h"
#include "support/LogRecorder.h"

namespace {

constexpr int kBlock = 32;
constexpr double kSampleRate = 44100.0;

// The pots' laws as the panel numbers 1 to 10 show them.
struct Channel {
    const char* tag;
    double bass[10], mid[10], treble[10], volume[10];
    double highGainDb[10], cornerHz[10];
};

const Channel kChannels[2] = {{"ArvelReverb65NormalTonestack",
                               {0, 0.016, 0.025, 0.055, 0.086, 0.13, 0.183, 0.44, 0.76, 1},
                               {0, 0.017, 0.037, 0.063, 0.083, 0.112, 0.158, 0.316, 0.595, 1},
                               {0, 0.022, 0.033, 0.109, 0.223, 0.319, 0.431, 0.527, 0.69, 0.85},
                               {0, 0.016, 0.03, 0.084, 0.189, 0.285, 0.405, 0.569, 0.78, 1},
                               {14, 11.5, 12, 13.75, 15.5, 16, 11, 6, 0, 0},
                               {3000, 3000, 4500, 6500, 9000, 11000, 13000, 16000, 16000, 16000}},
                              {"ArvelReverb65VibratoTonestack",
                               {0, 0.018, 0.031, 0.055, 0.098, 0.131, 0.185, 0.346, 0.456, 0.6},
                               {0, 0.017, 0.037, 0.063, 0.083, 0.112, 0.132, 0.28, 0.55, 1},
                               {0, 0.012, 0.026, 0.083, 0.158, 0.256, 0.361, 0.476, 0.595, 0.751},
                               {0, 0.014, 0.026, 0.064, 0.161, 0.255, 0.367, 0.569, 0.78, 1},
                               {16, 13.8, 10.6, 10, 10, 10, 9, 4, 0, 0},
                               {4000, 4000, 4000, 5000, 7000, 9500, 11000, 11000, 16000, 16000}}};

double clampPot(double value) {
    return std::clamp(value, 0.0001, 0.999);
}

class TonestackTest : public testing::TestWithParam<int> {
protected:
    TonestackTest() {
        if (GetParam() == 0)
            normal_ = std::make_unique<ArvelReverb65NormalTonestack>(kBlock, kSampleRate);
        else
            vibrato_ = std::make_unique<ArvelReverb65VibratoTonestack>(kBlock, kSampleRate);
    }
    const Channel& channel() const { return kChannels[GetParam()]; }
    ArvelReverb65Tonestack& stack() {
        if (normal_) return *normal_;
        return *vibrato_;
    }
    void setAll(float knob, bool isInit) {
        stack().setBass(knob, isInit);
        stack().setMid(knob, isInit);
        stack().setTreble(knob, isInit);
        stack().setVolume(knob, isInit);
    }
    // Past all fades, without signal.
    void settle() {
        float silence[kBlock] = {};
        for (int i = 0; i < 1000; ++i)
            stack().process(silence);
    }
    std::vector<float> impulseResponse(int blocks) {
        std::vector<float> h(static_cast<std::size_t>(blocks * kBlock), 0.0f);
        h[0] = 1.0f;
        for (int i = 0; i < blocks; ++i)
            stack().process(h.data() + i * kBlock);
        return h;
    }
    static double magnitude(const std::vector<float>& h, double hz) {
        std::complex<double> sum = 0.0;
        for (std::size_t n = 0; n < h.size(); ++n)
            sum += double(h[n]) * std::polar(1.0, -2.0 * std::numbers::pi * hz * double(n) / kSampleRate);
        return std::abs(sum);
    }
    static double circuitMagnitude(double b, double m, double t, double v, double hz) {
        const ToneCircuitPolynomials p = toneCircuitPolynomials(b, m, t, v);
        const std::complex<double> s(0.0, 2.0 * kSampleRate * std::tan(std::numbers::pi * hz / kSampleRate));
        return std::abs(s * (p.n1 + s * (p.n2 + s * p.n3)) /
                        (p.d0 + s * (p.d1 + s * (p.d2 + s * (p.d3 + s * p.d4)))));
    }

private:
    std::unique_ptr<ArvelReverb65NormalTonestack> normal_;
    std::unique_ptr<ArvelReverb65VibratoTonestack> vibrato_;
};

INSTANTIATE_TEST_SUITE_P(Channels, TonestackTest, testing::Values(0, 1),
                         [](const auto& which) { return which.param == 0 ? "Normal" : "Vibrato"; });

TEST_P(TonestackTest, EveryPanelNumberReachesTheCircuitThroughTheChannelsTables) {
    const Channel& c = channel();
    for (int panel = 1; panel <= 10; ++panel) {
        const int i = panel - 1;
        setAll(static_cast<float>(i) / 9.0f, true);
        settle();
        const std::vector<float> h = impulseResponse(1000);
        for (const double hz : {100.0, 500.0, 2000.0, 8000.0}) {
            const double expected = circuitMagnitude(clampPot(c.bass[i]), clampPot(c.mid[i]),
                                                     clampPot(c.treble[i]), clampPot(c.volume[i]), hz);
            EXPECT_NEAR(magnitude(h, hz) / expected, 1.0, 2e-3) << "panel " << panel << " at " << hz << " Hz";
        }
    }
}

TEST_P(TonestackTest, BetweenTwoPanelNumbersTheTaperIsAStraightLine) {
    const Channel& c = channel();
    setAll(6.5f / 9.0f, true);
    settle();
    const auto middle = [](const double(&table)[10]) { return 0.5 * (table[6] + table[7]); };
    EXPECT_NEAR(
        magnitude(impulseResponse(1000), 700.0) /
            circuitMagnitude(middle(c.bass), middle(c.mid), middle(c.treble), middle(c.volume), 700.0),
        1.0, 1e-4);
}

TEST_P(TonestackTest, AKnobsEndsAreLimitedToATenthOfAThousandthAndNineNineNine) {
    const LogRecorder log;
    setAll(0.0f, true);
    setAll(1.0f, false);
    const Channel& c = channel();
    const std::string tag = std::string(c.tag) + ": ";
    for (const char* name : {"Bass", "Middle", "Treble", "Volume"})
        EXPECT_TRUE(log.has(tag + name + ": knob=0.000, value=0.000, panel=1.00")) << name;
    const auto top = [](double value) { return std::to_string(clampPot(value)).substr(0, 5); };
    EXPECT_TRUE(log.has(tag + "Bass: knob=1.000, value=" + top(c.bass[9]) + ", panel=10.00"));
    EXPECT_TRUE(log.has(tag + "Middle: knob=1.000, value=" + top(c.mid[9]) + ", panel=10.00"));
    EXPECT_TRUE(log.has(tag + "Treble: knob=1.000, value=" + top(c.treble[9]) + ", panel=10.00"));
    EXPECT_TRUE(log.has(tag + "Volume: knob=1.000, value=" + top(c.volume[9]) + ", panel=10.00"));
}

// The bright capacitor alone: what the switch adds to the response of the stack.
TEST_P(TonestackTest, TheBrightSwitchAddsTheShelfThatTheVolumeKnobAsksFor) {
    for (int i = 0; i < 10; ++i) {
        setAll(static_cast<float>(i) / 9.0f, true);
        stack().setBrightSw(false, true);
        settle();
        const std::vector<float> off = impulseResponse(1000);
        stack().setBrightSw(true, true);
        settle();
        const std::vector<float> on = impulseResponse(1000);
        const double gain = std::pow(10.0, channel().highGainDb[i] / 20.0);
        const double corner = std::tan(std::numbers::pi * channel().cornerHz[i] / kSampleRate);
        for (const double hz : {200.0, 2000.0, 6000.0, 18000.0}) {
            // (s gh + wc sqrt(gh)) / (s + wc sqrt(gh)) ... of unit gain at DC, by the bilinear transform.
            const std::complex<double> s(0.0, std::tan(std::numbers::pi * hz / kSampleRate));
            const double root = std::sqrt(gain);
            const double expected = std::abs((s * root + corner) / (s / root + corner));
            EXPECT_NEAR(magnitude(on, hz) / magnitude(off, hz) / expected, 1.0, 1e-3)
                << "panel " << i + 1 << " at " << hz << " Hz";
        }
    }
}

TEST_P(TonestackTest, WhileTheSwitchIsOffTheHiddenShelfIsInaudible) {
    setAll(0.5f, true);
    settle();
    const std::vector<float> before = impulseResponse(1000);
    stack().setVolume(0.0f, true);
    stack().setVolume(0.5f, true);
    settle();
    EXPECT_EQ(impulseResponse(1000), before);
    const LogRecorder log;
    stack().setVolume(0.0f, false);
    const std::string cap = GetParam() == 0
                                ? "ArvelReverb65NormalPreampVolumeBrightCap: knob=0.000, gain=14.0dB, "
                                  "freq=3000Hz, panel=1.00"
                                : "ArvelReverb65VibratoPreampVolumeBrightCap: knob=0.000, gain=16.0dB, "
                                  "freq=4000Hz, panel=1.00";
    EXPECT_TRUE(log.has(cap));
}

// Low down the shelf's gain is 1, so a fade whose wet and dry gains sum to 1 leaves a low note's level alone.
TEST_P(TonestackTest, ABrightSwitchFadesOverTwentyMillisecondsAndNeverDoublesTheLevel) {
    setAll(4.0f / 9.0f, true);
    settle();
    std::vector<float> wave;
    for (int block = 0; block < 1000; ++block) {
        float x[kBlock];
        for (int n = 0; n < kBlock; ++n)
            x[n] = static_cast<float>(
                std::sin(2.0 * std::numbers::pi * 100.0 * (block * kBlock + n) / kSampleRate));
        if (block == 500) stack().setBrightSw(true, false);
        stack().process(x);
        wave.insert(wave.end(), x, x + kBlock);
    }
    const auto peak = [&](int from, int to) {
        double most = 0.0;
        for (int n = from; n < to; ++n)
            most = std::max(most, double(std::abs(wave[static_cast<std::size_t>(n)])));
        return most;
    };
    EXPECT_NEAR(peak(16000, 16500) / peak(15000, 15999), 1.0, 0.01);
    EXPECT_NEAR(peak(16500, 17500) / peak(15000, 15999), 1.0, 0.01);

    // At 8 kHz the shelf lifts: the fade has come 63 % of the way after 20 ms.
    stack().setBrightSw(false, true);
    settle();
    const auto level = [&](int blocks) {
        double sum = 0.0;
        for (int block = 0; block < blocks; ++block) {
            float x[kBlock];
            for (int n = 0; n < kBlock; ++n)
                x[n] = (n & 3) < 2 ? 1.0f : -1.0f;  // 11025 Hz, whole periods in a block
            stack().process(x);
            sum = 0.0;
            for (const float y : x)
                sum += double(y) * y;
        }
        return std::sqrt(sum / kBlock);
    };
    const double off = level(500);
    stack().setBrightSw(true, false);
    const double after = level(28);  // 20.3 ms
    const double on = level(500);
    EXPECT_GT(on, 1.5 * off);
    const double travelled = (after - off) / (on - off);
    EXPECT_GT(travelled, 0.45);
    EXPECT_LT(travelled, 0.75);
}

TEST_P(TonestackTest, TheBrightSwitchLogsStateAndKind) {
    const LogRecorder log;
    stack().setBrightSw(true, false);
    stack().setBrightSw(false, true);
    const std::string tag = std::string(channel().tag) + ": ";
    EXPECT_EQ(log.lines(), (std::vector<std::string>{tag + "setBrightSw(1, 0)", tag + "setBrightSw(0, 1)"}));
}

TEST_P(TonestackTest, ALoadTimeValueIsThereAtOnceAndALiveOneMoves) {
    setAll(0.2f, true);
    settle();
    const auto responseAfterVolume = [&](bool isInit) {
        stack().setVolume(0.2f, true);
        settle();
        stack().setVolume(0.9f, isInit);
        return magnitude(impulseResponse(1000), 5000.0);
    };
    const double live = responseAfterVolume(false);
    const double load = responseAfterVolume(true);
    stack().setVolume(0.9f, true);
    settle();
    const double settled = magnitude(impulseResponse(1000), 5000.0);
    EXPECT_NEAR(load / settled, 1.0, 1e-3);
    EXPECT_LT(live, 0.8 * settled);
}

}  // namespace
