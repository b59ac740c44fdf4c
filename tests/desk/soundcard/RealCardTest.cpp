#include <chrono>

#include "CardFixture.h"

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
