// The card as a program sees it: through the real ALSA library under the name "hw:0,0".
#pragma once

#include <alsa/asoundlib.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "desk/soundcard/VirtualCard.h"

using tvk::desk::FrameRing;
using tvk::desk::VirtualCard;

inline constexpr int kFrames = VirtualCard::kPeriodFrames;
inline constexpr int kChannels = VirtualCard::kChannels;

using Period = std::vector<std::int32_t>;

inline snd_pcm_t* openPcm(snd_pcm_stream_t stream, snd_pcm_format_t format = SND_PCM_FORMAT_S24_LE) {
    snd_pcm_t* pcm = nullptr;
    EXPECT_EQ(snd_pcm_open(&pcm, "hw:0,0", stream, 0), 0);
    snd_pcm_hw_params_t* hardware = nullptr;
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
    snd_pcm_sw_params_t* software = nullptr;
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
