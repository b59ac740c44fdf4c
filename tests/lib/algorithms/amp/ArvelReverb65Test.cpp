#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

#include "algorithms/amp/ArvelReverb65.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr int kBlock = 32;
constexpr float kSampleRate = 44100.0f;
constexpr float kVolts = 1.2f;

struct Feeds {
    std::vector<float> speaker;
    std::vector<float> line;
    bool operator==(const Feeds&) const = default;
};

std::vector<float> guitar(int blocks, double hz) {
    std::vector<float> x(static_cast<std::size_t>(blocks * kBlock));
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = static_cast<float>(0.2 * std::sin(6.283185307 * hz * double(n) / kSampleRate) *
                                  std::exp(-2.0 * double(n) / kSampleRate));
    return x;
}

std::vector<float> silence(int blocks) {
    return std::vector<float>(static_cast<std::size_t>(blocks * kBlock), 0.0f);
}

Feeds play(ArvelReverb65& amp, const std::vector<float>& normal, const std::vector<float>& vibrato) {
    Feeds out{std::vector<float>(normal.size()), std::vector<float>(normal.size())};
    for (std::size_t n = 0; n < normal.size(); n += kBlock)
        amp.process(normal.data() + n, vibrato.data() + n, out.speaker.data() + n, out.line.data() + n);
    return out;
}

TEST(ArvelReverb65, NothingInGivesNothingOut) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    play(amp, silence(1500), silence(1500));
    const Feeds out = play(amp, silence(10), silence(10));
    for (std::size_t n = 0; n < out.speaker.size(); ++n) {
        EXPECT_LT(std::abs(out.speaker[n]), 1e-12f);
        EXPECT_LT(std::abs(out.line[n]), 1e-12f);
    }
}

TEST(ArvelReverb65, EveryStageOfASilentAmpIsAtRestFromTheFirstBlock) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    const Feeds out = play(amp, silence(100), silence(100));
    for (const float y : out.speaker)
        ASSERT_LT(std::abs(y * ArvelReverb65::kFullPowerVolts), 1e-4f);
}

TEST(ArvelReverb65, WithoutACabinetTheLineIsTheSpeakerFeed) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    const Feeds out = play(amp, guitar(300, 220.0), guitar(300, 330.0));
    EXPECT_EQ(out.speaker, out.line);
    EXPECT_GT(*std::max_element(out.speaker.begin(), out.speaker.end()), 0.02f);
}

TEST(ArvelReverb65, OutputsMayBeTheInputs) {
    ArvelReverb65 apart(kBlock, kSampleRate, kVolts, true);
    ArvelReverb65 inPlace(kBlock, kSampleRate, kVolts, true);
    std::vector<float> a = guitar(100, 220.0);
    std::vector<float> b = guitar(100, 330.0);
    const Feeds expected = play(apart, a, b);
    for (std::size_t n = 0; n < a.size(); n += kBlock)
        inPlace.process(a.data() + n, b.data() + n, a.data() + n, b.data() + n);
    EXPECT_EQ(a, expected.speaker);
    EXPECT_EQ(b, expected.line);
}

// Reverb and vibrato sit in the vibrato channel.
TEST(ArvelReverb65, ASignalOnTheNormalInputHasNeitherReverbNorVibrato) {
    ArvelReverb65 plain(kBlock, kSampleRate, kVolts, true);
    ArvelReverb65 wet(kBlock, kSampleRate, kVolts, true);
    wet.setReverb(1.0f, true);
    wet.setReverbTaper(1);
    wet.setSpeed(0.7f, true);
    wet.setIntensity(1.0f, true);
    EXPECT_EQ(play(plain, guitar(300, 220.0), silence(300)), play(wet, guitar(300, 220.0), silence(300)));
}

// Well under the valves' limits the channels' sum is the sum of the channels.
TEST(ArvelReverb65, TheChannelsMeetAtTheirSum) {
    const auto level = [](double normal, double vibrato) {
        ArvelReverb65 amp(kBlock, kSampleRate, 1e-4f, false);
        std::vector<float> a = guitar(300, 440.0);
        std::vector<float> b = a;
        for (float& x : a)
            x *= static_cast<float>(normal);
        for (float& x : b)
            x *= static_cast<float>(vibrato);
        return play(amp, a, b).speaker;
    };
    const std::vector<float> both = level(1.0, 1.0);
    const std::vector<float> normal = level(1.0, 0.0);
    const std::vector<float> vibrato = level(0.0, 1.0);
    float peak = 0.0f;
    for (const float y : both)
        peak = std::max(peak, std::abs(y));
    for (std::size_t n = 0; n < both.size(); ++n)
        ASSERT_NEAR(both[n], normal[n] + vibrato[n], 0.01f * peak) << n;
}

TEST(ArvelReverb65, BothChannelControlsActOnEachChannel) {
    ArvelReverb65 together(kBlock, kSampleRate, kVolts, true);
    together.setGain(0.7f, true);
    together.setBass(0.2f, true);
    together.setMid(0.9f, true);
    together.setTreb(0.1f, true);
    together.setBrightSw(true, true);
    ArvelReverb65 apart(kBlock, kSampleRate, kVolts, true);
    apart.setNormalVolume(0.7f, true);
    apart.setVibratoVolume(0.7f, true);
    apart.setNormalBass(0.2f, true);
    apart.setVibratoBass(0.2f, true);
    apart.setNormalMid(0.9f, true);
    apart.setVibratoMid(0.9f, true);
    apart.setNormalTreb(0.1f, true);
    apart.setVibratoTreb(0.1f, true);
    apart.setNormalBright(true, true);
    apart.setVibratoBright(true, true);
    EXPECT_EQ(play(together, guitar(100, 220.0), guitar(100, 330.0)),
              play(apart, guitar(100, 220.0), guitar(100, 330.0)));
}

TEST(ArvelReverb65, EachChannelsKnobsChangeThatChannelAlone) {
    using Setter = void (ArvelReverb65::*)(float, bool);
    const Setter normalKnobs[] = {&ArvelReverb65::setNormalVolume, &ArvelReverb65::setNormalBass,
                                  &ArvelReverb65::setNormalMid, &ArvelReverb65::setNormalTreb};
    const Setter vibratoKnobs[] = {&ArvelReverb65::setVibratoVolume, &ArvelReverb65::setVibratoBass,
                                   &ArvelReverb65::setVibratoMid, &ArvelReverb65::setVibratoTreb};
    const auto sound = [](Setter knob, bool onNormal) {
        ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
        if (knob) (amp.*knob)(0.9f, true);
        return onNormal ? play(amp, guitar(100, 220.0), silence(100))
                        : play(amp, silence(100), guitar(100, 220.0));
    };
    for (const Setter knob : normalKnobs) {
        EXPECT_FALSE(sound(knob, true) == sound(nullptr, true));
        EXPECT_EQ(sound(knob, false), sound(nullptr, false));
    }
    for (const Setter knob : vibratoKnobs) {
        EXPECT_EQ(sound(knob, true), sound(nullptr, true));
        EXPECT_FALSE(sound(knob, false) == sound(nullptr, false));
    }
}

TEST(ArvelReverb65, BiasAndSagHaveNoAudibleEffect) {
    ArvelReverb65 plain(kBlock, kSampleRate, kVolts, true);
    ArvelReverb65 changed(kBlock, kSampleRate, kVolts, true);
    const LogRecorder log;
    changed.setBias(0.9f, false);
    changed.setSag(0, false);
    EXPECT_TRUE(log.startingWith("Warn").empty());
    const Feeds first = play(changed, guitar(100, 220.0), guitar(100, 330.0));
    EXPECT_EQ(first, play(plain, guitar(100, 220.0), guitar(100, 330.0)));
    changed.setSag(2, false);
    EXPECT_EQ(play(changed, guitar(100, 220.0), guitar(100, 330.0)),
              play(plain, guitar(100, 220.0), guitar(100, 330.0)));
}

TEST(ArvelReverb65, ControlsThatItsCircuitLacksWarnAndChangeNothing) {
    ArvelReverb65 plain(kBlock, kSampleRate, kVolts, true);
    ArvelReverb65 changed(kBlock, kSampleRate, kVolts, true);
    const LogRecorder log;
    changed.setPresence(0.9f, false);
    changed.setMasterVolume(0.1f, false);
    changed.setPresence(0.8f, false);
    EXPECT_EQ(log.count("Warn: setPresence not implemented"), 2);
    EXPECT_EQ(log.count("Warn: setMasterVolume not implemented"), 1);
    EXPECT_EQ(play(changed, guitar(100, 220.0), guitar(100, 330.0)),
              play(plain, guitar(100, 220.0), guitar(100, 330.0)));
}

TEST(ArvelReverb65, TheLastWordsOfItsConstructionAreItsScaleItsCurveAndNoCabinet) {
    const LogRecorder log;
    const ArvelReverb65 amp(kBlock, kSampleRate, 1.25f, true);
    const std::vector<std::string> lines = log.startingWith("ArvelReverb65: ");
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
              (std::vector<std::string>{"ArvelReverb65: sysFloatToVolts = 1.250000",
                                        "ArvelReverb65: isSpeakerImpedanceCurveEnabled = 1",
                                        "ArvelReverb65: cabinet = none"}));
}

// 0.2 full scale at half the voltage is 0.1 full scale at the whole.
TEST(ArvelReverb65, TheInputScaleStandsForVoltsAtTheJack) {
    ArvelReverb65 half(kBlock, kSampleRate, 0.5f, true);
    ArvelReverb65 whole(kBlock, kSampleRate, 1.0f, true);
    std::vector<float> loud = guitar(100, 220.0);
    std::vector<float> soft = loud;
    for (float& x : soft)
        x *= 0.5f;
    EXPECT_EQ(play(half, loud, loud), play(whole, soft, soft));
}

TEST(ArvelReverb65, ProcessNeitherAllocatesNorLocksNorWritesWhileKnobsMove) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    const std::vector<float> in = guitar(50, 220.0);
    std::vector<float> speaker(in.size());
    std::vector<float> line(in.size());
    const RealtimeGuard guard;
    for (std::size_t n = 0; n < in.size(); n += kBlock) {
        const float knob = (n / kBlock) % 2 ? 0.2f : 0.8f;
        amp.setGain(knob, false);
        amp.setBass(knob, n % 3 == 0);
        amp.setBrightSw(knob > 0.5f, false);
        amp.setSag(1, false);
        const tvk::RealtimeThreadScope realtime;
        amp.process(in.data() + n, in.data() + n, speaker.data() + n, line.data() + n);
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

// Each setter while the audio runs, for the thread sanitizer; and the sound stays finite and bounded.
TEST(ArvelReverb65, ControlsMayMoveOnAnotherThreadWhileAudioRuns) {
    ArvelReverb65 amp(kBlock, kSampleRate, kVolts, true);
    std::atomic<bool> isDone{false};
    std::thread panel([&] {
        std::mt19937 random(2);
        std::uniform_real_distribution<float> knob(0.0f, 1.0f);
        while (!isDone.load()) {
            const bool isInit = knob(random) < 0.2f;
            amp.setNormalVolume(knob(random), isInit);
            amp.setVibratoVolume(knob(random), isInit);
            amp.setBass(knob(random), isInit);
            amp.setMid(knob(random), isInit);
            amp.setTreb(knob(random), isInit);
            amp.setBrightSw(knob(random) < 0.5f, isInit);
            amp.setSag(static_cast<int>(3.0f * knob(random)), isInit);
            amp.setReverb(knob(random), isInit);
            amp.setCabinetHPF(600.0f * knob(random), isInit);
        }
    });
    const Feeds out = play(amp, guitar(500, 220.0), guitar(500, 330.0));
    isDone.store(true);
    panel.join();
    for (const float y : out.speaker)
        ASSERT_LT(std::abs(y), 3.0f);
}

}  // namespace
