#include <algorithm>
#include <cmath>

#include "CardFixture.h"

namespace {

constexpr double kScale24 = 0x1p23;

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
    snd_pcm_hw_params_t* hardware = nullptr;
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
        const std::int32_t* const frame = &period[static_cast<std::size_t>(i) * kChannels];
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
            ASSERT_EQ(period[static_cast<std::size_t>(frame) * kChannels + 3],
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
