// The PCM layer through the real ALSA library, on the virtual card.
#include <cerrno>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Audio/AudioAlsaPcm.h"
#include "desk/soundcard/VirtualCard.h"
#include "support/LogRecorder.h"
#include "utility/Exception.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using tvk::desk::Fault;
using tvk::desk::FrameRing;
using tvk::desk::VirtualCard;

namespace {

constexpr int kFrames = 32;
constexpr int kChannels = 6;
using Period = std::vector<std::int32_t>;

PcmConfiguration configuration() {
    PcmConfiguration c;
    c.channels = kChannels;
    return c;
}

std::string messageOf(const PcmConfiguration& playback, const PcmConfiguration& capture) {
    try {
        const AudioAlsaPcm pcm(playback, capture, true);
    } catch (const tvk::Exception& error) {
        return error.what();
    }
    return "no exception";
}

class Pcm : public ::testing::Test {
protected:
    static void SetUpTestSuite() { VirtualCard::installConfiguration(); }

    VirtualCard& card() { return VirtualCard::instance(); }

    void configure(VirtualCard::Settings settings = {}) {
        settings.clock = VirtualCard::ClockMode::Virtual;
        card().configure(std::move(settings));
    }

    void open() { pcm_ = std::make_unique<AudioAlsaPcm>(configuration(), configuration(), true); }

    void configureFault(const char* fault) {
        VirtualCard::Settings settings;
        settings.guitars[0] = std::vector<float>(100000, 0.25f);
        settings.faults = {Fault::parse(fault)};
        configure(std::move(settings));
    }

    void fillAndStart() {
        EXPECT_TRUE(pcm_->write(silence_.data()));
        EXPECT_TRUE(pcm_->write(silence_.data()));
        EXPECT_EQ(pcm_->start(), 0);
    }

    // Cycles of one read and one write until one fails or `most` are done; returns how many were whole.
    int cycle(int most) {
        for (int i = 0; i < most; ++i)
            if (!pcm_->read(period_.data()) || !pcm_->write(silence_.data())) return i;
        return most;
    }

    LogRecorder log_;
    std::unique_ptr<AudioAlsaPcm> pcm_;
    const Period silence_ = Period(kFrames * kChannels, 0);
    Period period_ = Period(kFrames * kChannels, 0);
};

}  // namespace

TEST_F(Pcm, PeriodOfSixChannelsHasItsSizesInBytes) {
    configure();
    open();
    EXPECT_EQ(pcm_->getPlaybackPeriodBytes(), 32u * 6u * 4u);
    EXPECT_EQ(pcm_->getCapturePeriodBytes(), 32u * 6u * 4u);
    EXPECT_EQ(pcm_->getPlaybackFloatBytes(), 32u * 6u * 4u);
    EXPECT_EQ(pcm_->getCaptureFloatBytes(), 32u * 6u * 4u);
}

TEST_F(Pcm, DefaultConfigurationIsThatOfTheDevice) {
    const PcmConfiguration c;
    EXPECT_STREQ(c.device, "hw:0,0");
    EXPECT_EQ(c.rate, 44100u);
    EXPECT_EQ(c.periodFrames, 32u);
    EXPECT_EQ(c.periods, 2u);
    EXPECT_EQ(c.channels, 2u);
    EXPECT_EQ(static_cast<int>(c.format), 6);
    EXPECT_EQ(static_cast<int>(c.access), 3);
}

TEST_F(Pcm, BothStreamsAreOpenedWithTheDemandedBuffer) {
    configure();
    open();
    for (snd_pcm_t* const handle : {pcm_->getPlaybackHandle(), pcm_->getCaptureHandle()}) {
        snd_pcm_uframes_t buffer = 0;
        snd_pcm_uframes_t period = 0;
        ASSERT_EQ(snd_pcm_get_params(handle, &buffer, &period), 0);
        EXPECT_EQ(buffer, 64u);
        EXPECT_EQ(period, 32u);
    }
}

TEST_F(Pcm, DeviceOfAnotherRateIsRefusedAndNotUsedAtItsOwn) {
    VirtualCard::Settings settings;
    settings.rateHz = 48000;
    configure(std::move(settings));
    EXPECT_EQ(messageOf(configuration(), configuration()), "setHwParams failed for playbackHandle");
    EXPECT_TRUE(log_.has("Error The rate 44100 Hz is not supported by your hardware."));
    EXPECT_TRUE(log_.has("Error  ==> Using 48000 Hz instead."));
}

TEST_F(Pcm, CaptureThatTakesNoParametersIsNamed) {
    configure();
    PcmConfiguration capture = configuration();
    capture.channels = 2;
    EXPECT_EQ(messageOf(configuration(), capture), "setHwParams failed for captureHandle");
    EXPECT_THAT(log_.startingWith("Error Error setting channels = 2."),
                ElementsAre(HasSubstr("Invalid argument")));
}

TEST_F(Pcm, MissingDeviceIsNamed) {
    configure();
    PcmConfiguration missing = configuration();
    missing.device = "nowhere:0";
    EXPECT_EQ(messageOf(missing, configuration()), "Error opening Playback PCM device nowhere:0");
    EXPECT_EQ(messageOf(configuration(), missing), "Error opening Capture PCM device nowhere:0");
}

TEST_F(Pcm, NothingStartsByItself) {
    configure();
    open();
    ASSERT_TRUE(pcm_->write(silence_.data()));
    ASSERT_TRUE(pcm_->write(silence_.data()));
    card().virtualTime().waitUntil(std::chrono::milliseconds(10));
    EXPECT_EQ(snd_pcm_state(pcm_->getPlaybackHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_EQ(snd_pcm_state(pcm_->getCaptureHandle()), SND_PCM_STATE_PREPARED);
}

TEST_F(Pcm, StartOfAnUnlinkedPairStartsBoth) {
    configure();
    open();
    EXPECT_EQ(log_.startingWith("Warn snd_pcm_link failed").size(), 1u);
    fillAndStart();
    EXPECT_EQ(snd_pcm_state(pcm_->getCaptureHandle()), SND_PCM_STATE_RUNNING);
    EXPECT_EQ(snd_pcm_state(pcm_->getPlaybackHandle()), SND_PCM_STATE_RUNNING);
    EXPECT_EQ(cycle(1000), 1000);
    EXPECT_EQ(pcm_->getXrunCount(), 0);
}

TEST_F(Pcm, BlockWrittenAfterTheReadPlaysNinetySixFramesAfterThePeriodBegan) {
    VirtualCard::Settings settings;
    settings.guitars[0] = {0.5f};
    configure(std::move(settings));
    open();
    fillAndStart();
    card().beginTransport();
    // What an engine does that writes the block of the cycle before: the period read goes out one cycle
    // later.
    Period before = silence_;
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(pcm_->read(period_.data()));
        ASSERT_TRUE(pcm_->write(before.data()));
        before = silence_;
        before[0] = period_[3];
    }
    std::vector<FrameRing::Frame> out(5 * kFrames);
    ASSERT_EQ(card().takeOutput(out.data(), out.size()), out.size());
    for (std::size_t n = 0; n < out.size(); ++n)
        EXPECT_EQ(out[n].speaker, n == 96 ? 0.5f : 0.0f) << n;
}

class PcmFault : public Pcm, public ::testing::WithParamInterface<const char*> {};

TEST_P(PcmFault, CountsOnceAndRunsAgainAfterDropPrepareAndStart) {
    configureFault(GetParam());
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_EQ(cycle(100), 7);
    EXPECT_EQ(pcm_->getXrunCount(), 1);
    EXPECT_EQ(log_.startingWith("Warn stream recovery, hw:0,0 ").size(), 1u);
    EXPECT_THAT(log_.startingWith("Warn stream recovery").front(), HasSubstr(": Broken pipe(-32)"));
    pcm_->dropAndPrepare();
    fillAndStart();
    EXPECT_EQ(cycle(100), 100);
    EXPECT_EQ(pcm_->getXrunCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(Each, PcmFault,
                         ::testing::Values("xrun-capture@7", "xrun-playback@7", "short-read@7"));

TEST_F(Pcm, FailedReadNamesTheCaptureAndFailedWriteThePlayback) {
    configureFault("xrun-capture@0");
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_FALSE(pcm_->read(period_.data()));
    EXPECT_TRUE(log_.has("Warn stream recovery, hw:0,0 capture: Broken pipe(-32)"));
    pcm_.reset();
    configureFault("xrun-playback@0");
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_TRUE(pcm_->read(period_.data()));
    EXPECT_FALSE(pcm_->write(silence_.data()));
    EXPECT_TRUE(log_.has("Warn stream recovery, hw:0,0 playback: Broken pipe(-32)"));
}

TEST_F(Pcm, CaptureIsPreparedAfterAFailedReadButDoesNotRun) {
    configureFault("xrun-capture@3");
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_EQ(cycle(100), 3);
    card().virtualTime().waitUntil(std::chrono::seconds(1));
    EXPECT_EQ(snd_pcm_state(pcm_->getCaptureHandle()), SND_PCM_STATE_PREPARED);
}

TEST_F(Pcm, DeviceThatIsGoneFailsUntilItIsBack) {
    configureFault("gone@3+10");
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_EQ(cycle(100), 3);
    pcm_->dropAndPrepare();
    EXPECT_FALSE(pcm_->write(silence_.data()));
    EXPECT_LT(pcm_->start(), 0);
    EXPECT_FALSE(pcm_->read(period_.data()));
    EXPECT_EQ(pcm_->getXrunCount(), 3);
    card().virtualTime().waitUntil(card().virtualTime().now() + std::chrono::milliseconds(8));
    pcm_->dropAndPrepare();
    fillAndStart();
    EXPECT_EQ(cycle(100), 100);
    EXPECT_EQ(pcm_->getXrunCount(), 3);
}

TEST_F(Pcm, RecoveryPreparesAndCounts) {
    configure();
    open();
    fillAndStart();
    EXPECT_EQ(pcm_->xrunRecovery(pcm_->getCaptureHandle(), -EPIPE), 0);
    EXPECT_EQ(snd_pcm_state(pcm_->getCaptureHandle()), SND_PCM_STATE_PREPARED);
    EXPECT_EQ(pcm_->xrunRecovery(pcm_->getPlaybackHandle(), -EIO), 0);
    // A stream that is not suspended resumes at once.
    EXPECT_EQ(pcm_->xrunRecovery(pcm_->getPlaybackHandle(), -ESTRPIPE), 0);
    EXPECT_EQ(pcm_->getXrunCount(), 3);
    EXPECT_TRUE(log_.has("Warn stream recovery, hw:0,0: Broken pipe(-32)"));
    EXPECT_TRUE(log_.has("Warn stream recovery, hw:0,0: Streams pipe error(-86)"));
}

TEST_F(Pcm, RecoveryThatFailsNamesItsKind) {
    configureFault("gone@0+100");
    open();
    fillAndStart();
    card().beginTransport();
    EXPECT_FALSE(pcm_->read(period_.data()));
    EXPECT_LT(pcm_->xrunRecovery(pcm_->getCaptureHandle(), -EPIPE), 0);
    EXPECT_LT(pcm_->xrunRecovery(pcm_->getCaptureHandle(), -EIO), 0);
    EXPECT_EQ(log_.startingWith("Warn Can't recover from underrun, prepare failed: ").size(), 1u);
    EXPECT_EQ(log_.startingWith("Warn Can't recover from unexpected error, prepare failed: ").size(), 1u);
}

TEST_F(Pcm, DestructorTellsTheXrunsAndClosesInOrder) {
    configureFault("xrun-capture@2");
    open();
    fillAndStart();
    card().beginTransport();
    cycle(100);
    log_.clear();
    pcm_.reset();
    std::vector<std::string> texts;
    for (const std::string& line : log_.lines())
        texts.push_back(line.substr(line.find(": ") + 2));
    EXPECT_THAT(texts, ElementsAre("Detected 1 xruns.", "calling drain", "calling close"));
}
