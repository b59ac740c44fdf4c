// Tank, vibrato and cabinet where they stand in the two-channel reverb amp.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

#include "algorithms/amp/ArvelReverb65.h"
#include "algorithms/amp/ArvelReverb65VibratoPreamp.h"
#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"
#include "algorithms/reverb/SpringTankResponse.h"
#include "support/LogRecorder.h"
#include "support/SoundFileBytes.h"
#include "support/TemporaryFolder.h"
#include "utility/BackgroundJobs.h"
#include "utility/HelperStall.h"

namespace {

constexpr int kBlock = 32;
constexpr float kSampleRate = 44100.0f;
constexpr float kVolts = 1.2f;

using Samples = std::vector<float>;
using Preamp = ArvelReverb65VibratoPreamp;

// Small enough for the valves to be linear.
Samples softBurst(int blocks) {
    Samples x(static_cast<std::size_t>(blocks * kBlock));
    for (std::size_t n = 0; n < 441; ++n)
        x[n] = static_cast<float>(1e-3 * std::sin(2.0 * std::numbers::pi * 1000.0 * double(n) / kSampleRate));
    return x;
}

// Blocks one by one, each after the helpers have done their share of the block before.
Samples play(Preamp& preamp, Samples x) {
    for (std::size_t n = 0; n < x.size(); n += kBlock) {
        preamp.process(x.data() + n);
        tvk::BackgroundJobs::waitUntilIdle();
    }
    return x;
}

Samples difference(const Samples& a, const Samples& b) {
    Samples d(a.size());
    std::transform(a.begin(), a.end(), b.begin(), d.begin(), std::minus<>());
    return d;
}

double rms(const Samples& x, double fromSeconds, double toSeconds) {
    double sum = 0.0;
    const auto from = static_cast<std::size_t>(fromSeconds * kSampleRate);
    const auto to = static_cast<std::size_t>(toSeconds * kSampleRate);
    for (std::size_t n = from; n < to; ++n)
        sum += double(x[n]) * double(x[n]);
    return std::sqrt(sum / double(to - from));
}

class VibratoChannel : public testing::Test {
protected:
    static void SetUpTestSuite() { SpringTankResponse::setFile(PRODUCT_HOME "/tank/SpringTank.wav"); }

    // What a setting adds to the channel without reverb.
    static Samples wetPart(int blocks, const std::function<void(Preamp&)>& setting) {
        Preamp dry(kBlock, kSampleRate);
        Preamp wet(kBlock, kSampleRate);
        setting(wet);
        return difference(play(wet, softBurst(blocks)), play(dry, softBurst(blocks)));
    }
};

TEST_F(VibratoChannel, TheFirstEchoComesAfterTheSpringsDelayAndTheTailDecays) {
    const Samples wet = wetPart(1400, [](Preamp& p) { p.setReverb(1.0f, true); });
    const double echo = rms(wet, 0.04, 0.1);
    EXPECT_LT(rms(wet, 0.0, 0.033), 1e-3 * echo);
    EXPECT_GT(echo, 1e-6);
    EXPECT_LT(rms(wet, 0.9, 1.0), 0.3 * echo);
    EXPECT_GT(rms(wet, 0.9, 1.0), 1e-3 * echo);
}

TEST_F(VibratoChannel, TheReverbKnobGoesThroughTheChosenTaper) {
    // Half travel: 20 % with t20, 30 % with t30.
    const Samples t20 = wetPart(200, [](Preamp& p) { p.setReverb(0.5f, true); });
    const Samples t30 = wetPart(200, [](Preamp& p) {
        p.setReverbTaper(1);
        p.setReverb(0.5f, true);
    });
    EXPECT_NEAR(rms(t30, 0.04, 0.14) / rms(t20, 0.04, 0.14), 1.5, 0.01);
}

TEST_F(VibratoChannel, AChangeOfTaperTakesTheStoredKnobThere) {
    const Samples changed = wetPart(200, [](Preamp& p) {
        p.setReverb(0.5f, true);
        p.setReverbTaper(1);
    });
    const Samples t30 = wetPart(200, [](Preamp& p) {
        p.setReverbTaper(1);
        p.setReverb(0.5f, true);
    });
    EXPECT_NEAR(rms(changed, 0.1, 0.14), rms(t30, 0.1, 0.14), 0.01 * rms(t30, 0.1, 0.14));
}

TEST_F(VibratoChannel, MuteAndTaperAreLogged) {
    Preamp preamp(kBlock, kSampleRate);
    const LogRecorder log;
    preamp.setReverbMute(true, false);
    preamp.setReverbTaper(1);
    preamp.setReverbMute(false, true);
    EXPECT_EQ(log.startingWith("ArvelReverb65VibratoPreamp: "),
              (std::vector<std::string>{"ArvelReverb65VibratoPreamp: Reverb Mute: true",
                                        "ArvelReverb65VibratoPreamp: Reverb Type: 1",
                                        "ArvelReverb65VibratoPreamp: Reverb Mute: false"}));
}

TEST_F(VibratoChannel, AMutedTankRunsOnAndItsTailComesBackWithTheMutesEnd) {
    const Samples burst = softBurst(700);
    Preamp dry(kBlock, kSampleRate);
    Preamp open(kBlock, kSampleRate);
    Preamp muted(kBlock, kSampleRate);
    open.setReverb(1.0f, true);
    muted.setReverb(1.0f, true);
    muted.setReverbMute(true, true);
    const auto cut = burst.begin() + 350 * kBlock;
    const Samples dryOut = play(dry, burst);
    const Samples openWet = difference(play(open, burst), dryOut);
    Samples mutedOut = play(muted, Samples(burst.begin(), cut));
    muted.setReverbMute(false, false);
    const Samples after = play(muted, Samples(cut, burst.end()));
    mutedOut.insert(mutedOut.end(), after.begin(), after.end());
    const Samples mutedWet = difference(mutedOut, dryOut);
    const double whole = rms(openWet, 0.04, 0.25);
    EXPECT_LT(rms(mutedWet, 0.0, 0.25), 1e-5 * whole);
    EXPECT_NEAR(rms(mutedWet, 0.4, 0.5), rms(openWet, 0.4, 0.5), 0.02 * rms(openWet, 0.4, 0.5));
}

TEST_F(VibratoChannel, AStalledTankHoldsTheAudioThreadWithWarningsUntilItGoesOn) {
    Preamp preamp(kBlock, kSampleRate);
    Preamp undisturbed(kBlock, kSampleRate);
    preamp.setReverb(1.0f, true);
    undisturbed.setReverb(1.0f, true);
    const Samples burst = softBurst(300);
    const Samples expected = play(undisturbed, burst);
    const LogRecorder log;
    const std::string notReady = "Warn Reverb buffer not ready";
    Samples out = burst;
    std::atomic<int> blocksDone{0};
    auto stall = std::make_unique<tvk::HelperStall>("AudRvbFrontThrd");
    std::thread audio([&] {
        for (int block = 0; block < 2; ++block) {
            preamp.process(out.data() + block * kBlock);
            blocksDone.fetch_add(1);
        }
    });
    tvk::HelperStall::waitUntilHeld();
    while (log.count(notReady) < 5)
        std::this_thread::yield();
    EXPECT_EQ(blocksDone.load(), 1);
    stall.reset();
    audio.join();
    tvk::BackgroundJobs::waitUntilIdle();
    for (int block = 2; block < 300; ++block) {
        preamp.process(out.data() + block * kBlock);
        tvk::BackgroundJobs::waitUntilIdle();
    }
    EXPECT_EQ(out, expected);
}

// At slow speed the shunt moves little within a window of 10 ms; its trough leaves 1 - c of the signal.
TEST_F(VibratoChannel, TheVibratoModulatesTheChannelAndItsMuteTakesThatBack) {
    Samples tone(static_cast<std::size_t>(1400 * kBlock));
    for (std::size_t n = 0; n < tone.size(); ++n)
        tone[n] =
            static_cast<float>(1e-3 * std::sin(2.0 * std::numbers::pi * 1000.0 * double(n) / kSampleRate));
    const auto swing = [&](bool isMuted) {
        Preamp preamp(kBlock, kSampleRate);
        preamp.setIntensity(1.0f, true);
        preamp.setTremoloMute(isMuted, true);
        const Samples out = play(preamp, tone);
        double least = 1e9, most = 0.0;
        for (double t = 0.3; t < 1.0; t += 0.01) {
            const double level = rms(out, t, t + 0.01);
            least = std::min(least, level);
            most = std::max(most, level);
        }
        return most / least;
    };
    EXPECT_GT(swing(false), 3.0);
    EXPECT_NEAR(swing(true), 1.0, 0.02);
}

class LineFeed : public testing::Test {
protected:
    LineFeed()
        : processor(std::make_shared<IRProcessor>(kBlock, 4096, 128, 64, 128, 3, "cabSim", 49, kSampleRate)) {
        SpringTankResponse::setFile("");
        IRProcessorPool::fill({processor});
        // A unit impulse: the cabinet is its filters and its level.
        soundfile::Bytes impulse(64, '\0');
        impulse[1] = 0x40;
        soundfile::write(folder.file("wire.wav"), soundfile::Wav{.data = impulse}.bytes());
        wire = folder.file("wire");
    }
    ~LineFeed() override { IRProcessorPool::clear(); }

    Samples lineOf(const std::function<void(ArvelReverb65&)>& setting) const {
        ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
        setting(amp);
        const Samples silent(kBlock, 0.0f);
        Samples speaker(kBlock);
        Samples line(300 * kBlock);
        Samples normal(kBlock);
        for (std::size_t n = 0; n < line.size(); n += kBlock) {
            for (std::size_t i = 0; i < kBlock; ++i)
                normal[i] = static_cast<float>(0.05 * std::sin(0.05 * double(n + i)));
            amp.process(normal.data(), silent.data(), speaker.data(), line.data() + n);
            tvk::BackgroundJobs::waitUntilIdle();
        }
        return line;
    }

    TemporaryFolder folder;
    std::string wire;
    std::shared_ptr<IRProcessor> processor;
};

TEST_F(LineFeed, CabinetValuesBeyondTheirRangeAreLimitedToIt) {
    struct Pair {
        void (ArvelReverb65::*setter)(float, bool);
        float beyond, limit, within;
    };
    const Pair pairs[] = {{&ArvelReverb65::setCabinetHPF, 600.0f, 500.0f, 400.0f},
                          {&ArvelReverb65::setCabinetHPF, 1.0f, 20.0f, 40.0f},
                          {&ArvelReverb65::setCabinetLPF, 10.0f, 1000.0f, 2000.0f},
                          {&ArvelReverb65::setCabinetLPF, 30000.0f, 20000.0f, 10000.0f},
                          {&ArvelReverb65::setCabinetLevel, 3.0f, 0.0f, -1.0f},
                          {&ArvelReverb65::setCabinetLevel, -50.0f, -36.0f, -35.0f}};
    for (const Pair& pair : pairs) {
        const auto with = [&](float value) {
            return lineOf([&](ArvelReverb65& amp) {
                amp.setCabinet(wire);
                (amp.*pair.setter)(value, true);
            });
        };
        EXPECT_EQ(with(pair.beyond), with(pair.limit)) << pair.beyond;
        EXPECT_NE(with(pair.beyond), with(pair.within)) << pair.within;
    }
}

TEST_F(LineFeed, CabinetSettersLogWhatTheyWereGiven) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    const LogRecorder log;
    amp.setCabinetHPF(600.0f, false);
    amp.setCabinetLPF(10.0f, false);
    amp.setCabinetLevel(3.0f, false);
    amp.setCabinet(wire);
    EXPECT_EQ(log.startingWith("ArvelReverb65: "),
              (std::vector<std::string>{
                  "ArvelReverb65: cabinet HPF = 600.000000", "ArvelReverb65: cabinet LPF = 10.000000",
                  "ArvelReverb65: cabinet level = 3.000000", "ArvelReverb65: cabinet = " + wire}));
}

TEST_F(LineFeed, ItsLevelIsThatOfTheCabinet) {
    const auto peakAt = [&](float db) {
        const Samples line = lineOf([&](ArvelReverb65& amp) {
            amp.setCabinet(wire);
            amp.setCabinetLevel(db, true);
        });
        return *std::max_element(line.begin(), line.end());
    };
    EXPECT_NEAR(peakAt(-12.0f) / peakAt(0.0f), std::pow(10.0, -12.0 / 20.0), 1e-3);
}

TEST_F(LineFeed, ACabinetThatIsNotThereLeavesTheDrySignal) {
    const LogRecorder log;
    EXPECT_EQ(lineOf([&](ArvelReverb65& amp) { amp.setCabinet(folder.file("missing")); }),
              lineOf([](ArvelReverb65&) {}));
    EXPECT_TRUE(log.has("Warn IRBase: Failed to load IR"));
}

}  // namespace
