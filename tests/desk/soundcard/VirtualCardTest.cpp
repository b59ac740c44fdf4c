// The card as a program sees it: through the real ALSA library under the name "hw:0,0".
#include <algorithm>
#include <alsa/asoundlib.h>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

#include "desk/soundcard/VirtualCard.h"

using tvk::desk::Fault;
using tvk::desk::FrameRing;
using tvk::desk::VirtualCard;

namespace {

constexpr int kFrames = VirtualCard::kPeriodFrames;
constexpr int kChannels = VirtualCard::kChannels;
constexpr double kScale24 = 0x1p23;

using Period = std::vector<std::int32_t>;

snd_pcm_t* openPcm(snd_pcm_stream_t stream, snd_pcm_format_t format = SND_PCM_FORMAT_S24_LE) {
    snd_pcm_t* pcm = nullptr;
    EXPECT_EQ(snd_pcm_open(&pcm, "hw:0,0", stream, 0), 0);
    snd_pcm_hw_params_t* hardware;
    snd_pcm_hw_params_alloca(&hardware);
    snd_pcm_hw_params_any(pcm, hardware);
    EXPECT_EQ(snd_pcm_hw_params_set_access(pcm, hardware, SND_PCM_ACCESS_RW_INTERLEAVED), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_format(pcm, hardware, format), 0);
    unsigned rate = 44100;
    EXPECT_EQ(snd_pcm_hw_params_set_rate_near(pcm, hardware, &rate, nullptr), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_channels(pcm, hardware, kChannels), 0);
    EXPECT_EQ(snd_pcm_hw_params_set_periods(pcm, hardware, 2, 0), 0);
    snd_pcm_uframes_t buffer = 64;
    EXPECT_EQ(snd_pcm_hw_params_set_buffer_size_near(pcm, hardware, &buffer), 0);
    EXPECT_EQ(buffer, 64u);
    EXPECT_EQ(snd_pcm_hw_params(pcm, hardware), 0);
    snd_pcm_uframes_t period = 0;
    snd_pcm_hw_params_get_period_size(hardware, &period, nullptr);
    EXPECT_EQ(period, 32u);
    snd_pcm_sw_params_t* software;
    snd_pcm_sw_params_alloca(&software);
    snd_pcm_sw_params_current(pcm, software);
    EXPECT_EQ(snd_pcm_sw_params_set_start_threshold(pcm, software, 0x7FFFFFFF), 0);
    EXPECT_EQ(snd_pcm_sw_params(pcm, software), 0);
    return pcm;
}

class Card : public ::testing::Test {
protected:
    static void SetUpTestSuite() { VirtualCard::installConfiguration(); }

    void TearDown() override {
        if (capture_) snd_pcm_close(capture_);
        if (playback_) snd_pcm_close(playback_);
    }

    VirtualCard& card() { return VirtualCard::instance(); }

    void configure(VirtualCard::Settings settings) {
        settings.clock = VirtualCard::ClockMode::Virtual;
        card().configure(std::move(settings));
    }

    void open(snd_pcm_format_t format = SND_PCM_FORMAT_S24_LE) {
        playback_ = openPcm(SND_PCM_STREAM_PLAYBACK, format);
        capture_ = openPcm(SND_PCM_STREAM_CAPTURE, format);
    }

    void begin() {
        ASSERT_EQ(write(silence_), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
        ASSERT_EQ(snd_pcm_start(capture_), 0);
    }

    long write(const Period& period) { return snd_pcm_writei(playback_, period.data(), kFrames); }

    long read(Period& period) {
        period.assign(kFrames * kChannels, 0);
        return snd_pcm_readi(capture_, period.data(), kFrames);
    }

    std::vector<FrameRing::Frame> output() {
        std::vector<FrameRing::Frame> all(1 << 16);
        all.resize(card().takeOutput(all.data(), all.size()));
        return all;
    }

    snd_pcm_t* capture_ = nullptr;
    snd_pcm_t* playback_ = nullptr;
    const Period silence_ = Period(kFrames * kChannels, 0);
};

std::vector<float> ramp(int frames, float step) {
    std::vector<float> samples(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i)
        samples[static_cast<std::size_t>(i)] = step * static_cast<float>(i + 1);
    return samples;
}

}  // namespace

TEST_F(Card, LibraryLoadsTheSameObjectThatTheProgramLinks) {
    configure({});
    open();
    begin();
    Period period;
    ASSERT_EQ(read(period), kFrames);
    // Had the library loaded a second copy, this one would not have moved.
    EXPECT_EQ(card().counters().capturedFrames, 32u);
}

TEST_F(Card, OnePeriodOfReadingMovesTimeByOnePeriod) {
    configure({});
    open();
    begin();
    Period period;
    for (int i = 1; i <= 100; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
        const double expectedNs = i * kFrames * 1e9 / 44100.0;
        EXPECT_NEAR(static_cast<double>(card().virtualTime().now().count()), expectedNs, 1.0);
    }
}

TEST_F(Card, OtherRateIsNotOffered) {
    VirtualCard::Settings settings;
    settings.rateHz = 48000;
    configure(settings);
    snd_pcm_t* pcm = nullptr;
    ASSERT_EQ(snd_pcm_open(&pcm, "hw:0,0", SND_PCM_STREAM_CAPTURE, 0), 0);
    snd_pcm_hw_params_t* hardware;
    snd_pcm_hw_params_alloca(&hardware);
    snd_pcm_hw_params_any(pcm, hardware);
    unsigned rate = 44100;
    EXPECT_EQ(snd_pcm_hw_params_set_rate_near(pcm, hardware, &rate, nullptr), 0);
    EXPECT_EQ(rate, 48000u);
    snd_pcm_close(pcm);
}

TEST_F(Card, WriteToAFullCardThatDoesNotRunReturnsAtOnce) {
    configure({});
    open();
    ASSERT_EQ(write(silence_), kFrames);
    ASSERT_EQ(write(silence_), kFrames);
    EXPECT_LE(write(silence_), 0);
}

TEST_F(Card, GuitarsArriveOnTheirSensitiveAndRobustChannels) {
    VirtualCard::Settings settings;
    settings.sensitiveGainDb = 20.0f;
    settings.guitars = {ramp(64, 0.01f), ramp(64, -0.005f)};
    configure(settings);
    open();
    begin();
    card().beginTransport();
    Period period;
    ASSERT_EQ(read(period), kFrames);
    for (int i = 0; i < kFrames; ++i) {
        const double normal = 0.01 * (i + 1);
        const double vibrato = -0.005 * (i + 1);
        const std::int32_t* const frame = &period[static_cast<std::size_t>(i * kChannels)];
        // Half a step of rounding, and the rounding of the samples to 32-bit floats.
        const double tolerance = 0.5 + kScale24 * 6e-8;
        EXPECT_NEAR(frame[0], std::max(vibrato * 10.0 * kScale24, -kScale24), 10.0 * tolerance);
        EXPECT_NEAR(frame[1], vibrato * kScale24, tolerance);
        EXPECT_NEAR(frame[2], std::min(normal * 10.0 * kScale24, kScale24 - 1.0), 10.0 * tolerance);
        EXPECT_NEAR(frame[3], normal * kScale24, tolerance);
        EXPECT_EQ(frame[4], 0);
        EXPECT_EQ(frame[5], 0);
    }
}

TEST_F(Card, ThirtyTwoBitWordsCarryTheSameSignal) {
    VirtualCard::Settings settings;
    settings.guitars = {ramp(32, 0.03125f), {}};
    configure(settings);
    open(SND_PCM_FORMAT_S32_LE);
    begin();
    card().beginTransport();
    Period period;
    ASSERT_EQ(read(period), kFrames);
    EXPECT_EQ(period[3], 1 << 26);                      // 2^-5 of 2^31
    EXPECT_EQ(period[31 * kChannels + 3], 2147483647);  // full scale saturates
}

TEST_F(Card, GuitarIsSilentBeforeTheTransportAndAfterItsEnd) {
    VirtualCard::Settings settings;
    settings.guitars = {std::vector<float>(32, 0.5f), {}};
    configure(settings);
    open();
    begin();
    Period period;
    for (int i = 0; i < 10; ++i) {
        if (i == 5) card().beginTransport();
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
        EXPECT_EQ(period[3], i == 5 ? 1 << 22 : 0) << i;
    }
}

TEST_F(Card, LoopedGuitarStartsAgainWithoutAGap) {
    VirtualCard::Settings settings;
    settings.guitars = {ramp(40, 0x1p-10f), {}};
    settings.loop = true;
    configure(settings);
    open();
    begin();
    card().beginTransport();
    Period period;
    for (int i = 0; i < 8; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
        for (int frame = 0; frame < kFrames; ++frame)
            ASSERT_EQ(period[static_cast<std::size_t>(frame * kChannels + 3)],
                      ((i * kFrames + frame) % 40 + 1) << 13);
    }
}

TEST_F(Card, WhatIsWrittenAfterAReadPlaysSixtyFourFramesAfterThePeriodRead) {
    VirtualCard::Settings settings;
    settings.guitars[0] = {1.0f};
    configure(settings);
    open();
    begin();
    card().beginTransport();
    Period period;
    for (int i = 0; i < 6; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(period[3], i == 0 ? (1 << 23) - 1 : 0);
        Period out = silence_;
        out[0] = 1000 + i;
        out[1] = -1000 - i;
        ASSERT_EQ(write(out), kFrames);
    }
    ASSERT_EQ(read(period), kFrames);
    const auto played = output();
    ASSERT_EQ(played.size(), 7u * kFrames);
    // Written at the end of period i, behind two periods of silence: plays at frame 64 + 32 i.
    for (std::size_t i = 0; i + 2 < 7; ++i) {
        EXPECT_DOUBLE_EQ(played[64 + 32 * i].speaker, static_cast<double>(1000 + i) / kScale24);
        EXPECT_DOUBLE_EQ(played[64 + 32 * i].line, -static_cast<double>(1000 + i) / kScale24);
        EXPECT_EQ(played[65 + 32 * i].speaker, 0.0f);
    }
}

TEST_F(Card, OutputHasExactlyTheTransportsFrames) {
    VirtualCard::Settings settings;
    settings.transportFrames = 100;
    configure(settings);
    open();
    begin();
    card().beginTransport();
    Period period;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
        EXPECT_FALSE(card().transportFinished());
    }
    ASSERT_EQ(read(period), kFrames);
    EXPECT_TRUE(card().transportFinished());
    EXPECT_EQ(output().size(), 100u);
}

TEST_F(Card, OutputThatNobodyTakesHoldsNothingUpAfterTheTransportsEnd) {
    configure({});
    open();
    begin();
    card().beginTransport();
    card().endTransport();
    Period period;
    // Longer than there is room for.
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
    }
    EXPECT_EQ(output().size(), 0u);
}

TEST_F(Card, UnwrittenPlaybackUnderrunsWhenItsLastFrameHasPlayed) {
    configure({});
    open();
    begin();
    Period period;
    ASSERT_EQ(read(period), kFrames);
    ASSERT_EQ(read(period), kFrames);
    EXPECT_EQ(write(silence_), -EPIPE);
    EXPECT_EQ(card().counters().playbackXruns, 1);
    EXPECT_EQ(card().counters().captureXruns, 0);
}

TEST_F(Card, UnreadCaptureOverrunsWhenItsBufferIsFull) {
    configure({});
    open();
    begin();
    card().virtualTime().waitUntil(std::chrono::milliseconds(2));
    Period period;
    EXPECT_EQ(read(period), -EPIPE);
    EXPECT_EQ(card().counters().captureXruns, 1);
}

TEST_F(Card, StartedCaptureNeedsNoStartOfThePlayback) {
    configure({});
    open();
    begin();
    Period period;
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
    }
}

TEST_F(Card, PlaybackMayBeStartedAfterTheCaptureHasStartedIt) {
    configure({});
    open();
    begin();
    EXPECT_EQ(snd_pcm_start(playback_), 0);
    Period period;
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(read(period), kFrames);
        ASSERT_EQ(write(silence_), kFrames);
    }
}

TEST_F(Card, LinkIsNotThereForAUserSpacePcm) {
    configure({});
    open();
    EXPECT_EQ(snd_pcm_link(capture_, playback_), -ENOSYS);
}

namespace {

// Reads and writes until a call fails or `periods` have passed; returns the number of whole periods.
struct Outcome {
    int periods = 0;
    long readResult = kFrames;
    long writeResult = kFrames;
};

}  // namespace

class FaultyCard : public Card {
protected:
    void startWith(const char* fault) {
        VirtualCard::Settings settings;
        settings.guitars = {std::vector<float>(100000, 0.25f), {}};
        settings.faults = {Fault::parse(fault)};
        configure(settings);
        open();
        begin();
        card().beginTransport();
    }

    Outcome runUntilTrouble(int most) {
        Outcome outcome;
        Period period;
        while (outcome.periods < most) {
            outcome.readResult = read(period);
            if (outcome.readResult != kFrames) return outcome;
            outcome.writeResult = write(silence_);
            if (outcome.writeResult != kFrames) return outcome;
            ++outcome.periods;
        }
        return outcome;
    }

    void restart() {
        snd_pcm_drop(capture_);
        snd_pcm_drop(playback_);
        ASSERT_EQ(snd_pcm_prepare(capture_), 0);
        ASSERT_EQ(snd_pcm_prepare(playback_), 0);
        begin();
    }
};

TEST_F(FaultyCard, CaptureXrunFailsTheReadOfItsPeriodOnce) {
    startWith("xrun-capture@5");
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, -EPIPE);
    EXPECT_EQ(card().counters().captureXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, PlaybackXrunFailsTheWriteAfterTheReadOfItsPeriodOnce) {
    startWith("xrun-playback@5");
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, kFrames);
    EXPECT_EQ(outcome.writeResult, -EPIPE);
    EXPECT_EQ(card().counters().playbackXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, ShortReadGivesHalfAPeriodAndThenFails) {
    startWith("short-read@5");
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, kFrames / 2);
    Period period;
    EXPECT_EQ(read(period), -EPIPE);
    EXPECT_EQ(card().counters().captureXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, GoneCardRefusesEverythingUntilItIsBack) {
    startWith("gone@5+10");
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_LT(outcome.readResult, 0);
    const auto goneAt = card().virtualTime().now();
    snd_pcm_drop(capture_);
    EXPECT_EQ(snd_pcm_prepare(capture_), -ENODEV);
    Period period;
    EXPECT_LT(read(period), 0);
    EXPECT_LT(write(silence_), 0);
    card().virtualTime().waitUntil(goneAt + std::chrono::nanoseconds(10 * 725624));
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, LostTimeIsSilenceInTheOutput) {
    startWith("gone@5+10");
    runUntilTrouble(100);
    card().virtualTime().waitUntil(card().virtualTime().now() + std::chrono::nanoseconds(10 * 725624));
    restart();
    runUntilTrouble(4);
    // Five periods before, the one that failed, ten lost, four after: card time and output never part.
    EXPECT_EQ(output().size(), 20u * kFrames);
}

TEST(RealCard, PacesReadsByTheMachinesClockAndPlaysWithoutTrouble) {
    VirtualCard::installConfiguration();
    VirtualCard& card = VirtualCard::instance();
    card.configure({});
    snd_pcm_t* const playback = openPcm(SND_PCM_STREAM_PLAYBACK);
    snd_pcm_t* const capture = openPcm(SND_PCM_STREAM_CAPTURE);
    const Period silence(kFrames * kChannels, 0);
    Period period(kFrames * kChannels);
    const auto prepareAndStart = [&] {
        snd_pcm_drop(capture);
        snd_pcm_drop(playback);
        snd_pcm_prepare(capture);
        snd_pcm_prepare(playback);
        snd_pcm_writei(playback, silence.data(), kFrames);
        snd_pcm_writei(playback, silence.data(), kFrames);
        ASSERT_EQ(snd_pcm_start(capture), 0);
    };
    prepareAndStart();
    const auto before = std::chrono::steady_clock::now();
    // A busy machine may be late at any time; every lateness must show as an xrun and nothing else.
    long errors = 0;
    for (int i = 0; i < 200; ++i) {
        const long result = snd_pcm_readi(capture, period.data(), kFrames);
        const long written = result < 0 ? result : snd_pcm_writei(playback, silence.data(), kFrames);
        if (written == kFrames) continue;
        ASSERT_EQ(written, -EPIPE);
        ++errors;
        prepareAndStart();
    }
    const auto elapsed = std::chrono::steady_clock::now() - before;
    // Each success took a period, less the two that the buffer lets one be late.
    const double leastSeconds = static_cast<double>(200 - errors - 2 * (errors + 1)) * kFrames / 44100.0;
    EXPECT_GE(std::chrono::duration<double>(elapsed).count(), leastSeconds);
    EXPECT_EQ(card.counters().captureXruns + card.counters().playbackXruns, errors);
    snd_pcm_close(capture);
    snd_pcm_close(playback);
}
