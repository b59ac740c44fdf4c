#include <algorithm>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/Audio/AudioAlsaPcm.h"
#include "support/LogRecorder.h"
#include "support/NotedClock.h"
#include "support/card/TestCard.h"
#include "utility/Exception.h"

namespace {

// What the next calls of snd_pcm_resume return, the last for ever. Only hardware answers it with a failure,
// so that this one call of the library is the test's own.
std::vector<int> resumeResults;
int resumeCalls = 0;

}  // namespace

extern "C" int snd_pcm_resume(snd_pcm_t*) {
    const int call = resumeCalls++;
    return resumeResults.at(std::min(static_cast<std::size_t>(call), resumeResults.size() - 1));
}

namespace {

constexpr std::size_t kPeriodWords = 32 * 6;

using Lines = std::vector<std::string>;
using Words = std::vector<std::int32_t>;

PcmConfiguration sixChannels() {
    PcmConfiguration configuration;
    configuration.channels = 6;
    return configuration;
}

class AudioAlsaPcmTest : public testing::Test {
protected:
    // The text that construction throws.
    std::string thrownFor(const PcmConfiguration& playback, const PcmConfiguration& capture) {
        try {
            const AudioAlsaPcm pcm(playback, capture, true);
        } catch (const tvk::Exception& e) {
            return e.what();
        }
        return "nothing thrown";
    }
    std::string thrown() { return thrownFor(sixChannels(), sixChannels()); }

    CardScope scope;
    TestCard& card = scope.card;
    LogRecorder log;
};

class OpenPcm : public AudioAlsaPcmTest {
protected:
    void fillAndStart() {
        pcm.write(silence.data());
        pcm.write(silence.data());
        ASSERT_EQ(pcm.start(), 0);
    }
    AudioAlsaPcm pcm{sixChannels(), sixChannels(), true};
    Words silence = Words(kPeriodWords);
    Words frames = Words(kPeriodWords);
};

TEST(PcmConfiguration, DefaultsAreTheBuiltInRecord) {
    const PcmConfiguration configuration;
    EXPECT_STREQ(configuration.device, "hw:0,0");
    EXPECT_EQ(configuration.rate, 44100u);
    EXPECT_EQ(configuration.periodFrames, 32u);
    EXPECT_EQ(configuration.periods, 2u);
    EXPECT_EQ(configuration.channels, 2u);
    EXPECT_EQ(static_cast<int>(configuration.format), 6);
    EXPECT_EQ(static_cast<int>(configuration.access), 3);
}

TEST_F(OpenPcm, SizesFollowFromTheConfiguration) {
    EXPECT_EQ(pcm.getPlaybackPeriodBytes(), 32u * 6 * 4);
    EXPECT_EQ(pcm.getCapturePeriodBytes(), 32u * 6 * 4);
    EXPECT_EQ(pcm.getPlaybackFloatBytes(), 32u * 6 * 4);
    EXPECT_EQ(pcm.getCaptureFloatBytes(), 32u * 6 * 4);
    EXPECT_EQ(pcm.getPlaybackConfiguration().channels, 6u);
    EXPECT_EQ(pcm.getCaptureConfiguration().channels, 6u);
}

TEST_F(OpenPcm, BothStreamsTakeTwoPeriodsOf32AndNeverStartByThemselves) {
    for (snd_pcm_t* handle : {pcm.getPlaybackHandle(), pcm.getCaptureHandle()}) {
        snd_pcm_uframes_t buffer = 0;
        snd_pcm_uframes_t period = 0;
        ASSERT_EQ(snd_pcm_get_params(handle, &buffer, &period), 0);
        EXPECT_EQ(buffer, 64u);
        EXPECT_EQ(period, 32u);
    }
    pcm.write(silence.data());
    pcm.write(silence.data());
    EXPECT_EQ(snd_pcm_state(pcm.getPlaybackHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_EQ(card.startThresholds, (std::vector<unsigned long>{0x7FFFFFFF, 0x7FFFFFFF}));
    EXPECT_EQ(log.count("AudioAlsaPcm: AudioAlsaPcm::setHwParams : hw:0,0 "), 2);
}

TEST_F(OpenPcm, AFailedLinkIsAWarningAndStartThenStartsPlaybackToo) {
    EXPECT_TRUE(log.has("Warn snd_pcm_link failed: Function not implemented"));
    const std::size_t before = card.calls.size();
    EXPECT_EQ(pcm.start(), 0);
    EXPECT_EQ(card.callsSince(before), (Lines{"capture start", "playback start"}));
    EXPECT_EQ(snd_pcm_state(pcm.getPlaybackHandle()), SND_PCM_STATE_RUNNING);
}

TEST_F(OpenPcm, StartReturnsTheCodeOfAFailure) {
    card.startResult = -ENODEV;
    EXPECT_EQ(pcm.start(), -ENODEV);
}

TEST_F(OpenPcm, ReadAndWriteMoveOnePeriod) {
    card.captured = [](std::uint64_t frame, unsigned channel) {
        return static_cast<std::int32_t>(frame * 10 + channel);
    };
    fillAndStart();
    for (std::int32_t period = 0; period < 5; ++period) {
        ASSERT_TRUE(pcm.read(frames.data()));
        for (std::int32_t i = 0; i < 32; ++i)
            for (std::int32_t channel = 0; channel < 6; ++channel)
                ASSERT_EQ(frames[static_cast<std::size_t>(i * 6 + channel)],
                          (period * 32 + i) * 10 + channel);
        ASSERT_TRUE(pcm.write(frames.data()));
    }
    EXPECT_EQ(card.written.size(), 7 * kPeriodWords);
    EXPECT_EQ(Words(card.written.end() - static_cast<std::ptrdiff_t>(kPeriodWords), card.written.end()),
              frames);
    EXPECT_EQ(pcm.getXrunCount(), 0);
}

TEST_F(OpenPcm, APeriodInPiecesIsPutTogether) {
    card.captured = [](std::uint64_t frame, unsigned) { return static_cast<std::int32_t>(frame); };
    fillAndStart();
    const long first = card.captureTransfers;
    card.onCapture = [first](long call, long wanted) -> long {
        return call == first ? 12 : call == first + 1 ? -EINTR : wanted;
    };
    ASSERT_TRUE(pcm.read(frames.data()));
    for (std::size_t i = 0; i < 32; ++i)
        EXPECT_EQ(frames[i * 6], static_cast<std::int32_t>(i));
    EXPECT_EQ(pcm.getXrunCount(), 0);
}

TEST_F(OpenPcm, AFailedReadIsWarnedOfCountedAndLeavesCapturePreparedWithNothingRunning) {
    fillAndStart();
    card.onCapture = [](long, long) { return -EPIPE; };
    EXPECT_FALSE(pcm.read(frames.data()));
    EXPECT_EQ(pcm.getXrunCount(), 1);
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0 capture: Broken pipe(-32)"));
    EXPECT_EQ(snd_pcm_state(pcm.getCaptureHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_FALSE(card.captureRuns);

    card.onCapture = nullptr;
    const std::size_t before = card.calls.size();
    pcm.dropAndPrepare();
    EXPECT_EQ(card.callsSince(before),
              (Lines{"capture stop", "playback stop", "capture prepare", "playback prepare"}));
    fillAndStart();
    EXPECT_TRUE(card.captureRuns);
    EXPECT_TRUE(pcm.read(frames.data()));
    EXPECT_EQ(pcm.getXrunCount(), 1);
}

TEST_F(OpenPcm, AFailedWriteIsWarnedOfAndCounted) {
    fillAndStart();
    card.onPlayback = [](long, long) { return -EPIPE; };
    ASSERT_TRUE(pcm.read(frames.data()));
    EXPECT_FALSE(pcm.write(frames.data()));
    EXPECT_EQ(pcm.getXrunCount(), 1);
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0 playback: Broken pipe(-32)"));
    EXPECT_EQ(snd_pcm_state(pcm.getPlaybackHandle()), SND_PCM_STATE_PREPARED);
}

TEST_F(OpenPcm, AnUnderrunThatTheCardSeesFailsTheNextWrite) {
    fillAndStart();
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(pcm.read(frames.data()));
    EXPECT_FALSE(pcm.write(frames.data())) << "the card is a period past what was written";
    EXPECT_EQ(pcm.getXrunCount(), 1);
}

// The library answers a blocking write of nothing at once when the buffer is full and nothing runs.
TEST_F(OpenPcm, AStreamThatMovesNothingIsAFailureAndNoEndlessLoop) {
    EXPECT_TRUE(pcm.write(silence.data()));
    EXPECT_TRUE(pcm.write(silence.data()));
    EXPECT_FALSE(pcm.write(silence.data()));
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0 playback: Input/output error(-5)"));
}

TEST_F(OpenPcm, RecoveryPreparesAfterAnUnderrunAndAfterAnyOtherError) {
    fillAndStart();
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -EPIPE), 0);
    EXPECT_EQ(snd_pcm_state(pcm.getPlaybackHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_EQ(pcm.xrunRecovery(pcm.getCaptureHandle(), -EIO), 0);
    EXPECT_EQ(snd_pcm_state(pcm.getCaptureHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_EQ(pcm.getXrunCount(), 2);
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0: Broken pipe(-32)"));
    EXPECT_TRUE(log.has("Warn stream recovery, hw:0,0: Input/output error(-5)"));
}

TEST_F(OpenPcm, RecoveryWarnsWhenTheStreamCannotBePrepared) {
    card.prepareResult = -ENODEV;
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -EPIPE), -ENODEV);
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -EIO), -ENODEV);
    EXPECT_TRUE(log.has("Warn Can't recover from underrun, prepare failed: No such device"));
    EXPECT_TRUE(log.has("Warn Can't recover from unexpected error, prepare failed: No such device"));
}

TEST_F(OpenPcm, ASuspendedStreamIsResumedWithASecondBetweenTries) {
    NotedClock clock;
    resumeCalls = 0;
    resumeResults = {-EAGAIN, -EAGAIN, 0};
    const std::size_t before = card.calls.size();
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -ESTRPIPE), 0);
    EXPECT_EQ(resumeCalls, 3);
    EXPECT_EQ(card.callsSince(before), Lines{}) << "a resumed stream goes on where it was";
    EXPECT_EQ(clock.sleeps, (std::vector<std::chrono::nanoseconds>(2, std::chrono::seconds(1))));
    EXPECT_EQ(pcm.getXrunCount(), 1);
}

TEST_F(OpenPcm, AStreamThatCannotBeResumedIsPrepared) {
    resumeResults = {-ENOSYS};
    const std::size_t before = card.calls.size();
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -ESTRPIPE), 0);
    EXPECT_EQ(card.callsSince(before), Lines{"playback prepare"});
    card.prepareResult = -ENODEV;
    EXPECT_EQ(pcm.xrunRecovery(pcm.getPlaybackHandle(), -ESTRPIPE), -ENODEV);
    EXPECT_TRUE(log.has("Warn Can't recover from suspend, prepare failed: No such device"));
}

TEST_F(AudioAlsaPcmTest, TheEndDrainsAndClosesCaptureBeforePlayback) {
    std::size_t before = 0;
    {
        AudioAlsaPcm pcm(sixChannels(), sixChannels(), true);
        pcm.start();
        before = card.calls.size();
        log.clear();
    }
    EXPECT_EQ(log.lines(), (Lines{"AudioAlsaPcm: Detected 0 xruns.", "AudioAlsaPcm: calling drain",
                                  "AudioAlsaPcm: calling close"}));
    Lines calls = card.callsSince(before);
    std::erase_if(calls, [](const std::string& call) { return call.find("stop") != std::string::npos; });
    EXPECT_EQ(calls, (Lines{"capture drain", "playback drain", "capture close", "playback close"}));
}

TEST_F(AudioAlsaPcmTest, WithoutTheLinkNothingIsSaidOfIt) {
    const AudioAlsaPcm pcm(sixChannels(), sixChannels(), false);
    EXPECT_TRUE(log.startingWith("Warn ").empty());
}

TEST_F(AudioAlsaPcmTest, ADeviceThatDoesNotOpenFailsWithItsName) {
    PcmConfiguration missing = sixChannels();
    missing.device = "no_such_device";
    EXPECT_EQ(thrownFor(missing, sixChannels()), "Error opening Playback PCM device no_such_device");
    card.calls.clear();
    EXPECT_EQ(thrownFor(sixChannels(), missing), "Error opening Capture PCM device no_such_device");
    EXPECT_EQ(card.callsSince(0), (Lines{"playback open", "playback close"})) << "no handle survives";
}

TEST_F(AudioAlsaPcmTest, ADeviceOfAnotherRateFailsAndIsNotUsedAtThatRate) {
    card.rateHz = 48000;
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error The rate 44100 Hz is not supported by your hardware."));
    EXPECT_TRUE(log.has("Error  ==> Using 48000 Hz instead."));
    EXPECT_EQ(card.callsSince(0),
              (Lines{"playback open", "capture open", "capture close", "playback close"}));
}

TEST_F(AudioAlsaPcmTest, EachParameterThatIsRefusedFailsInItsOwnWords) {
    const std::string invalid = ". Invalid argument";
    card.accesses = {4};
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error invalid access type" + invalid));

    card = TestCard();
    card.formats = {2};
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error invalid format" + invalid));

    card = TestCard();
    card.channels = 2;
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error Error setting channels = 6" + invalid));

    card = TestCard();
    card.mostPeriods = 1;
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error Error setting periods :2" + invalid));

    card = TestCard();
    card.hwParamsResult = -EBUSY;
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error Error setting HW params. Device or resource busy"));

    card = TestCard();
    card.swParamsResult = -EBUSY;
    EXPECT_EQ(thrown(), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log.has("Error Unable to set sw params: Device or resource busy"));
}

TEST_F(AudioAlsaPcmTest, ARefusalOfCaptureAloneNamesCapture) {
    PcmConfiguration stereo;
    EXPECT_EQ(thrownFor(sixChannels(), stereo), "setHwParams failed for captureHandle");
    EXPECT_TRUE(log.has("Error Error setting channels = 2. Invalid argument"));
}

}  // namespace
