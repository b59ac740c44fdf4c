#include "AudioProcessorFixture.h"
#include "shared/Presets/BuiltInPresets.h"
#include "utility/Exception.h"

namespace {

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
