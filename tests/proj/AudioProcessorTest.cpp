#include <cerrno>
#include <chrono>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "core/ProductProfile/ProductProfile.h"
#include "core/System/DspUnitAudioBufferStorage.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "proj/models/audio/AudioProcessor.h"
#include "shared/Presets/BuiltInPresets.h"
#include "support/AudioWhileWaiting.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "support/TemporaryFolder.h"
#include "support/card/TestCard.h"
#include "utility/Exception.h"
#include "utility/RealtimeThread.h"

namespace {

using Lines = std::vector<std::string>;

constexpr double kRate = 44100.0;
constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kDeltaDb = 12.0;
constexpr std::size_t kPeriodWords = 32 * 6;

const char* const kPassthruPreset = R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,
    "numOutputs":2,"info":{},"audioGraph":{"nodes":[{"nodeId":"DUBS_LinearGain_1","nodeType":"dspUnit",
    "TarvekId":"PassthruStereo","dspUnitParameters":{}}],"connections":[
    {"input":{"nodeId":"preset","index":0},"output":{"nodeId":"DUBS_LinearGain_1","index":0}},
    {"input":{"nodeId":"preset","index":1},"output":{"nodeId":"DUBS_LinearGain_1","index":1}},
    {"input":{"nodeId":"DUBS_LinearGain_1","index":0},"output":{"nodeId":"preset","index":0}},
    {"input":{"nodeId":"DUBS_LinearGain_1","index":1},"output":{"nodeId":"preset","index":1}}]}})";

const char* const kEmptyPreset = R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,
    "numOutputs":2,"info":{},"audioGraph":{"nodes":[],"connections":[]}})";

std::int32_t word(double sample) {
    return static_cast<std::int32_t>(std::lround(sample * 0x1p23));
}

double sample(std::int32_t raw) {
    return raw / 0x1p23;
}

class AudioProcessorTest : public testing::Test {
protected:
    AudioProcessorTest() {
        std::ofstream(folder.file("profile.json"))
            << R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": )" << kDeltaDb << "}";
        profile = std::make_unique<ProductProfile>(folder.file("profile.json"));
    }
    ~AudioProcessorTest() override { tvk::log::drainRealtimeRing(); }

    AudioProcessorSettings settings(int format = 6) const {
        return {"hw:0,0", "hw:0,0", 32, format, 44100.0f, "no such file"};
    }
    void build(int format = 6) { processor = std::make_unique<AudioProcessor>(settings(format), *profile); }
    // As the audio thread does it.
    void cycle() {
        const tvk::RealtimeThreadScope realtime;
        processor->process();
    }
    void cycles(int count) {
        for (int i = 0; i < count; ++i)
            cycle();
    }
    // Audio goes on in the waits of the load.
    void load(const char* preset) {
        const AudioWhileWaiting clock(32.0 / kRate, [this] { cycle(); });
        processor->loadPreset(preset);
    }
    std::vector<std::int32_t> lastPeriodWritten() const {
        return {card.written.end() - static_cast<std::ptrdiff_t>(kPeriodWords), card.written.end()};
    }

    TemporaryFolder folder;
    CardScope scope;
    TestCard& card = scope.card;
    LogRecorder log;
    std::unique_ptr<ProductProfile> profile;
    std::unique_ptr<AudioProcessor> processor;
};

// One input of the amplifier as the analogue front end gives it, and the chain to the graph in doubles.
class Reference {
public:
    double next(double sensitive, double robust) {
        sensitive_ += (sensitive - sensitive_) * kDc;
        robust_ += (robust - robust_) * kDc;
        const double s = sensitive - sensitive_;
        const double r = robust - robust_;
        const double attacked = envelope_ + (std::abs(s) - envelope_) * kAttack;
        envelope_ = attacked < std::abs(s) ? attacked : envelope_ + (std::abs(s) - envelope_) * kRelease;
        isLoud_ = isLoud_ ? envelope_ > 0.25 : envelope_ >= 0.5;
        gain_ = (isLoud_ ? 1.0 : 0.0) * (1.0 - kPole) + gain_ * kPole;
        return r * gain_ + s * std::pow(10.0, -kDeltaDb / 20.0) * (1.0 - gain_);
    }

private:
    const double kDc = 1.0 - std::exp(-kTwoPi * 5.0 / kRate);
    const double kAttack = 1.0 - std::exp(-kTwoPi * 1000.0 / kRate);
    const double kRelease = 1.0 - std::exp(-kTwoPi * 1.0 / kRate);
    const double kPole = std::exp(-kTwoPi * 100.0 / kRate);
    double sensitive_ = 0.0, robust_ = 0.0, envelope_ = 0.0, gain_ = 0.0;
    bool isLoud_ = false;
};

TEST_F(AudioProcessorTest, ConstructionSaysWhatItIsBuiltFor) {
    build();
    EXPECT_EQ(log.startingWith("AudioProcessorInit: "),
              (Lines{"AudioProcessorInit: audioSampleRate 44100", "AudioProcessorInit: audioBlockLength 32",
                     "AudioProcessorInit: inputDevice hw:0,0", "AudioProcessorInit: outputDevice hw:0,0",
                     "AudioProcessorInit: audioFormat 6", "AudioProcessorInit: dreGainDeltaDb is 12.000000",
                     "AudioProcessorInit: allocating inputAudioAlsaPcmBuffer: 768 bytes",
                     "AudioProcessorInit: allocating outputAudioAlsaPcmBuffer: 768 bytes",
                     "AudioProcessorInit: allocating inputAudioSampleBuffer: 768 bytes",
                     "AudioProcessorInit: allocating outputAudioSampleBuffer: 768 bytes"}));
}

TEST_F(AudioProcessorTest, TheEndReleasesInOrder) {
    build();
    log.clear();
    processor.reset();
    EXPECT_EQ(log.startingWith("AudioProcessor: "),
              (Lines{"AudioProcessor: destructor called", "AudioProcessor: deleting audioAlsaPcm",
                     "AudioProcessor: freeing inputAudioAlsaPcmBuffer\n",
                     "AudioProcessor: freeing outputAudioAlsaPcmBuffer\n",
                     "AudioProcessor: freeing zeroedOutputAudioAlsaPcmBuffer\n",
                     "AudioProcessor: freeing inputAudioSampleBuffer\n",
                     "AudioProcessor: freeing outputAudioSampleBuffer\n",
                     "AudioProcessor: deleting audio buffering\n"}));
}

TEST_F(AudioProcessorTest, AnyFormatButTheTwoIsRefused) {
    for (const int format : {2, 5, 7, 11, 14, -1}) {
        try {
            build(format);
            FAIL() << format;
        } catch (const tvk::Exception& e) {
            EXPECT_STREQ(e.what(), "Specified audio format is not supported");
        }
    }
    EXPECT_NO_THROW(build(10));
}

TEST_F(AudioProcessorTest, ADeviceThatCannotBeSetUpThrowsAndNothingStaysOpen) {
    card.rateHz = 48000;
    EXPECT_THROW(build(), tvk::Exception);
    EXPECT_EQ(card.callsSince(0),
              (Lines{"playback open", "capture open", "capture close", "playback close"}));
}

// A sanitizer's allocator ends the program instead.
#ifndef TARVEK_SANITIZED
TEST(PcmBuffer, MissingMemoryThrowsWithTheNameOfTheBuffer) {
    try {
        const PcmBuffer<float> buffer("inputAudioSampleBuffer", SIZE_MAX / 4);
        FAIL();
    } catch (const tvk::Exception& e) {
        EXPECT_STREQ(e.what(), "inputAudioSampleBuffer allocation");
    }
}
#endif

TEST_F(AudioProcessorTest, TheInputsAndTheCalibrationArePublished) {
    build();
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::get(), 1.2f);
    float* const sum = DspUnitAudioBufferStorage::getAddr(0);
    ASSERT_NE(sum, nullptr);
    card.captured = [](std::uint64_t frame, unsigned channel) {
        return channel < 4 ? word(frame % 2 == 0 ? 0.1 : -0.1) : 0;
    };
    cycles(50);
    EXPECT_NEAR(std::abs(sum[31]), 2.0 * 0.1 * std::pow(10.0, -kDeltaDb / 20.0), 1e-3);
    processor.reset();
    EXPECT_EQ(DspUnitAudioBufferStorage::getAddr(0), nullptr);
}

TEST_F(AudioProcessorTest, TheFirstCycleFillsThePlaybackBufferAndStartsThenReadsAndWritesAtOnce) {
    build();
    const std::size_t before = card.calls.size();
    EXPECT_FALSE(processor->isStarted());
    cycle();
    EXPECT_TRUE(processor->isStarted());
    EXPECT_EQ(card.callsSince(before),
              (Lines{"write", "write", "capture start", "playback start", "read", "write"}));
    cycle();
    EXPECT_EQ(card.callsSince(before + 6), (Lines{"read", "write"}));
    EXPECT_EQ(card.written, std::vector<std::int32_t>(4 * kPeriodWords, 0));
}

TEST_F(AudioProcessorTest, WithoutAPresetThereIsSilence) {
    build();
    card.captured = [](std::uint64_t frame, unsigned) { return static_cast<std::int32_t>(frame * 7919); };
    cycles(500);
    EXPECT_EQ(std::count(card.written.begin(), card.written.end(), 0),
              static_cast<std::ptrdiff_t>(card.written.size()));
}

// A frame captured at t is written as frame t + 96: two start periods, and one cycle.
TEST_F(AudioProcessorTest, AGuitarComesOutOfAPassThruThreePeriodsLaterAsTheFormulasGiveIt) {
    build();
    const double ratio = std::pow(10.0, -kDeltaDb / 20.0);
    const auto guitar = [](std::uint64_t frame, double frequency) {
        const double t = static_cast<double>(frame) / kRate;
        return (0.15 + 0.1 * std::sin(kTwoPi * 1.3 * t)) * std::sin(kTwoPi * frequency * t);
    };
    const auto captured = [&](std::uint64_t frame, unsigned channel) {
        const double jack = guitar(frame, channel < 2 ? 330.0 : 551.0);
        const double range = channel % 2 == 0 ? std::clamp(jack / ratio, -1.0, 1.0 - 0x1p-23) : jack;
        return channel < 4 ? sample(word(range)) : 0.0;
    };
    card.captured = [&](std::uint64_t frame, unsigned channel) { return word(captured(frame, channel)); };
    cycles(10);
    load(kPassthruPreset);
    cycles(3 * 44100 / 32);

    Reference vibrato;
    Reference normal;
    const std::vector<std::int32_t> channel0 = card.writtenChannel(0);
    const std::vector<std::int32_t> channel1 = card.writtenChannel(1);
    double worst = 0.0;
    double loudest = 0.0;
    for (std::size_t t = 0; t + 96 < channel0.size(); ++t) {
        const double input1 = vibrato.next(captured(t, 0), captured(t, 1));
        const double input0 = normal.next(captured(t, 2), captured(t, 3));
        if (t < 2 * 44100) continue;  // the 4 Hz fade
        worst = std::max(worst, std::abs(sample(channel0[t + 96]) - input0));
        worst = std::max(worst, std::abs(sample(channel1[t + 96]) - input1));
        loudest = std::max(loudest, std::abs(input0));
    }
    EXPECT_GT(loudest, 0.2);
    EXPECT_LT(worst, 1e-3 * loudest);
    for (unsigned channel = 2; channel < 6; ++channel)
        EXPECT_EQ(card.writtenChannel(channel), std::vector<std::int32_t>(channel0.size(), 0));
}

TEST_F(AudioProcessorTest, TheOutputRisesFromZeroAlongTheFourHertzFade) {
    build();
    // Half the sample rate passes the DC trackers whole; small, so that the sensitive range stays.
    card.captured = [](std::uint64_t frame, unsigned) { return word(frame % 2 == 0 ? 0.4 : -0.4); };
    load(kPassthruPreset);
    cycles(44100 / 32);
    const double full = 0.4 * std::pow(10.0, -kDeltaDb / 20.0);
    const std::vector<std::int32_t> channel = card.writtenChannel(0);
    for (std::size_t t = 2205; t + 96 < channel.size(); t += 441) {
        const double fade = 1.0 - std::exp(-kTwoPi * 4.0 * static_cast<double>(t + 1) / kRate);
        EXPECT_NEAR(std::abs(sample(channel[t + 96])), full * fade, 2e-3 * full) << t;
    }
}

TEST_F(AudioProcessorTest, ABlockOf32BitWordsIsWrittenWithAllItsBits) {
    build(10);
    card.captured = [](std::uint64_t frame, unsigned) { return word(frame % 2 == 0 ? 0.4 : -0.4); };
    load(kPassthruPreset);
    cycles(2 * 44100 / 32);
    const double last = std::abs(lastPeriodWritten()[0]) / 0x1p31;
    EXPECT_NEAR(last, 0.4 * std::pow(10.0, -kDeltaDb / 20.0), 1e-3);
}

TEST_F(AudioProcessorTest, AFailedReadLosesThePeriodAndTheNextCycleRestartsWithSilence) {
    build();
    cycles(3);
    card.onCapture = [](long, long) { return -EPIPE; };
    const std::size_t before = card.calls.size();
    cycle();
    EXPECT_EQ(card.callsSince(before), (Lines{"read", "capture prepare"})) << "nothing is written";
    EXPECT_TRUE(processor->isStarted());
    EXPECT_EQ(processor->getXrunCount(), 1);

    card.onCapture = nullptr;
    const std::size_t restart = card.calls.size();
    cycle();
    EXPECT_EQ(card.callsSince(restart),
              (Lines{"capture stop", "playback stop", "capture prepare", "playback prepare", "write", "write",
                     "capture start", "playback start", "read", "write"}));
    cycles(3);
    EXPECT_EQ(processor->getXrunCount(), 1);
    EXPECT_EQ(tvk::log::drainRealtimeRing(), 1);
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0 capture: Broken pipe(-32)"));
}

TEST_F(AudioProcessorTest, AFailedReadBeforeTheFirstBlockLeavesTheEngineUnstarted) {
    build();
    card.onCapture = [](long, long) { return -EIO; };
    cycle();
    EXPECT_FALSE(processor->isStarted());
    card.onCapture = nullptr;
    cycle();
    EXPECT_TRUE(processor->isStarted());
}

TEST_F(AudioProcessorTest, AFailedWriteDoesNotSkipTheBlockAndTheNextCycleRestarts) {
    build();
    // Half the volume from the failed cycle on tells its block from those before.
    std::uint64_t failedFrom = UINT64_MAX;
    card.captured = [&failedFrom](std::uint64_t frame, unsigned) {
        const double level = frame < failedFrom ? 0.4 : 0.2;
        return word(frame % 2 == 0 ? level : -level);
    };
    load(kPassthruPreset);
    cycles(44100 / 32);
    ASSERT_NE(lastPeriodWritten()[0], 0);

    const long failing = card.playbackTransfers;
    card.onPlayback = [failing](long call, long frames) { return call == failing ? -EPIPE : frames; };
    failedFrom = card.capturedFrames;
    cycle();
    EXPECT_EQ(card.capturedFrames, failedFrom + 32);
    EXPECT_EQ(processor->getXrunCount(), 1);

    const std::size_t restart = card.calls.size();
    const std::size_t written = card.written.size();
    cycle();
    EXPECT_EQ(card.callsSince(restart),
              (Lines{"capture stop", "playback stop", "capture prepare", "playback prepare", "write", "write",
                     "capture start", "playback start", "read", "write"}));
    const std::vector<std::int32_t> silence(card.written.begin() + static_cast<std::ptrdiff_t>(written),
                                            card.written.end() - static_cast<std::ptrdiff_t>(kPeriodWords));
    EXPECT_EQ(silence, std::vector<std::int32_t>(2 * kPeriodWords, 0));
    EXPECT_NEAR(std::abs(sample(lastPeriodWritten()[0])), 0.2 * std::pow(10.0, -kDeltaDb / 20.0), 1e-3)
        << "the block of the failed cycle was computed and goes out now";
    EXPECT_EQ(processor->getXrunCount(), 1);
}

TEST_F(AudioProcessorTest, AStartThatFailsIsAWarning) {
    build();
    card.startResult = -ENODEV;
    cycle();
    tvk::log::drainRealtimeRing();
    EXPECT_TRUE(log.has("Warn Go error: No such device\n"));
}

// Time passes at once, and is written down.
class NotedClock : public tvk::Clock {
public:
    NotedClock() { install(this); }
    ~NotedClock() override { install(nullptr); }
    std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(0); }
    void sleepFor(std::chrono::nanoseconds duration) override { sleeps.push_back(duration); }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }
    std::vector<std::chrono::nanoseconds> sleeps;
};

TEST_F(AudioProcessorTest, ADeviceThatIsGoneIsTriedOncePerPeriod) {
    build();
    cycles(3);
    NotedClock clock;
    card.onCapture = [](long, long) { return -ENODEV; };
    cycle();
    EXPECT_TRUE(clock.sleeps.empty()) << "one failure restarts at once";
    cycles(4);
    ASSERT_EQ(clock.sleeps.size(), 4u);
    for (const std::chrono::nanoseconds sleep : clock.sleeps)
        EXPECT_EQ(sleep, std::chrono::nanoseconds(725624));  // 32 / 44100 s
    card.onCapture = nullptr;
    cycles(3);
    EXPECT_EQ(clock.sleeps.size(), 4u);
    EXPECT_EQ(processor->getXrunCount(), 5);
}

TEST_F(AudioProcessorTest, WithoutAPresetEverySetterDoesNothing) {
    build();
    log.clear();
    for (int control = 0; control < 15; ++control) {
        processor->setKnob(static_cast<AmpControl>(control), 0.5f);
        processor->setSwitch(static_cast<AmpControl>(control), true);
    }
    processor->setCabinet("none");
    processor->setCabinetHPF(100.0f);
    processor->setCabinetLPF(5000.0f);
    processor->setCabinetLevel(-3.0f);
    processor->setReverbTaper(1);
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(AudioProcessorTest, APresetWithoutContentsWarnsAndLeavesTheSettersWithoutEffect) {
    build();
    load(kPassthruPreset);
    load(kEmptyPreset);
    EXPECT_EQ(log.count("Warn ampNodeId is empty, preset has no contents"), 1);
    log.clear();
    processor->setKnob(AmpControl::NormalVolume, 0.5f);
    processor->setCabinetHPF(100.0f);
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(AudioProcessorTest, ALoadedPresetBindsItsFirstUnit) {
    build();
    load(kPassthruPreset);
    EXPECT_TRUE(log.has("AudioProcessor: Created UI for PassthruStereo"));
    log.clear();
    processor->setKnob(AmpControl::NormalVolume, 0.5f);
    EXPECT_EQ(log.startingWith("UIStdDisplayDspUnit: setKnob(0, ").size(), 1u);
}

TEST_F(AudioProcessorTest, AnAmplifierWithoutTheParameterIsAWarning) {
    build();
    load(kPassthruPreset);
    log.clear();
    processor->setCabinetLevel(-3.0f);
    EXPECT_EQ(log.lines(), Lines{"Warn PassthruStereo: Unknown parameter idCabinetLevel."});
}

TEST_F(AudioProcessorTest, ATextThatDoesNotParseThrowsAndThePresetBeforeGoesOnSounding) {
    build();
    card.captured = [](std::uint64_t frame, unsigned) { return word(frame % 2 == 0 ? 0.4 : -0.4); };
    load(kPassthruPreset);
    EXPECT_ANY_THROW(load("{"));
    cycles(44100 / 32);
    EXPECT_GT(std::abs(sample(lastPeriodWritten()[0])), 0.05);
    log.clear();
    processor->setKnob(AmpControl::NormalVolume, 0.5f);
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(AudioProcessorTest, TheMasterVolumeIsStored) {
    build();
    EXPECT_EQ(processor->getMasterVolume(), 0.0f);
    processor->setMasterVolume(0.7f);
    EXPECT_EQ(processor->getMasterVolume(), 0.7f);
    EXPECT_EQ(processor->getSampleRate(), 44100.0f);
}

TEST_F(AudioProcessorTest, ProcessNeitherAllocatesNorLocksThroughLoadsKnobsAndRecovery) {
    build();
    card.captured = [](std::uint64_t frame, unsigned) {
        return static_cast<std::int32_t>((frame * 2654435761u) >> 9);
    };
    const RealtimeGuard guard;
    cycles(20);
    for (int round = 0; round < 3; ++round) {
        load(tvk::builtInPreset(2));
        for (int control = 0; control < 15; ++control) {
            processor->setKnob(static_cast<AmpControl>(control), 0.1f * static_cast<float>(round));
            cycle();
        }
        const long capture = card.captureTransfers;
        card.onCapture = [capture](long call, long frames) { return call == capture ? -EPIPE : frames; };
        cycles(5);
        const long playback = card.playbackTransfers;
        card.onPlayback = [playback](long call, long frames) { return call == playback ? -EPIPE : frames; };
        cycles(5);
        load(kEmptyPreset);
    }
    EXPECT_EQ(processor->getXrunCount(), 6);
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

}  // namespace
