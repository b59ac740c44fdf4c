#include <numbers>

#include "AudioProcessorFixture.h"
#include "core/System/DspUnitAudioBufferStorage.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "utility/Exception.h"

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

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

}  // namespace
