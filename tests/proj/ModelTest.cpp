#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "proj/models/Model.h"
#include "proj/models/audio/BlockTimer.h"
#include "proj/platform/Platform.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "support/card/SteppedTime.h"
#include "support/card/TestCard.h"

namespace {

using Lines = std::vector<std::string>;

class ModelTest : public testing::Test {
protected:
    ModelTest() {
        platform.homeRoot = folder.path();
        std::ofstream(folder.file("product_profile.json"))
            << R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": 12})";
    }
    // Runs the claim against a model that lives on its own threads.
    template <typename Claim>
    void with(Claim claim) {
        SteppedTime time(scope.card);
        {
            Model model(platform);
            claim(model);
            time.release();
        }
        scope.card.beforePeriod = nullptr;
    }
    // The log lines of one call.
    template <typename Call>
    Lines linesOf(Call call) {
        log.clear();
        call();
        return log.startingWith("Model: ");
    }

    TemporaryFolder folder;
    CardScope scope;
    LogRecorder log;
    tvk::Platform platform;
};

class BlockCounter : public BlockTimer {
public:
    void blockStarts() override {}
    void blockEnds() override { ++blocks; }
    std::atomic<int> blocks{0};
};

TEST_F(ModelTest, ConstructionEndsWithTheFirstBlockDone) {
    BlockCounter counter;
    platform.blockTimer = &counter;
    with([&](Model& model) {
        EXPECT_GE(counter.blocks, 1);
        EXPECT_EQ(log.startingWith("Model: "),
                  (Lines{"Model: Constructor called", "Model: Constructor complete"}));
        EXPECT_EQ(model.getSampleRate(), 44100.0f);
        EXPECT_EQ(model.getXrunCount(), 0);
        EXPECT_NE(model.getIrProcessor(), nullptr);
    });
}

TEST_F(ModelTest, TheAudioThreadHasItsName) {
    with([](Model&) {
        Lines names;
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            names.push_back(name);
        }
        EXPECT_EQ(std::count(names.begin(), names.end(), "AudioProcessor"), 1);
    });
}

TEST_F(ModelTest, ThePanelStartsAtZeroAndKeepsWhatIsStored) {
    with([](Model& model) {
        PanelState& panel = model.panel();
        EXPECT_EQ(panel.normalVolume.get(), 0.0f);
        EXPECT_EQ(panel.cabsim.get(), 0);
        EXPECT_EQ(panel.productId.get(), 0);
        EXPECT_FALSE(panel.vibratoBright.get());
        panel.normalVolume.set(0.25f);
        panel.cabsim.set(2);
        panel.vibratoBright.set(true);
        EXPECT_EQ(panel.normalVolume.get(), 0.25f);
        EXPECT_EQ(panel.cabsim.get(), 2);
        EXPECT_TRUE(panel.vibratoBright.get());
    });
}

TEST_F(ModelTest, EverySlotLoadsItsPresetUnderItsLine) {
    const char* const lines[] = {
        "Model: setAudioProcessingPreset(TestModePassthru)",
        "Model: setAudioProcessingPreset(CorvinReverb65)", "Model: setAudioProcessingPreset(ArvelReverb65)",
        "Model: setAudioProcessingPreset(LiskoReverb65", "Model: setAudioProcessingPreset(SorrelReverb)"};
    with([&](Model& model) {
        for (int slot = 0; slot < 5; ++slot) {
            EXPECT_EQ(linesOf([&] { model.setAudioProcessingPreset(slot); }),
                      Lines{lines[static_cast<std::size_t>(slot)]});
            EXPECT_EQ(log.startingWith("AudioProcessor: Created UI for ").size(), 1u);
        }
    });
}

TEST_F(ModelTest, AnySlotBeyondIsAnErrorAndLeavesTheRunningPreset) {
    with([&](Model& model) {
        model.setAudioProcessingPreset(2);
        for (const int slot : {5, -1, 1000}) {
            EXPECT_EQ(linesOf([&] { model.setAudioProcessingPreset(slot); }), Lines{});
            EXPECT_EQ(log.lines(), Lines{"Error invalid preset selected, " + std::to_string(slot)});
        }
        log.clear();
        model.setNormalVolume(0.5f);
        EXPECT_EQ(log.startingWith("UIStdDisplayDspUnit: setKnob(0, ").size(), 1u) << "still bound";
    });
}

TEST_F(ModelTest, BeforeTheFirstPresetEverySetterOnlyLogsItsLine) {
    with([&](Model& model) {
        const auto only = [&](const char* line, auto call) {
            linesOf(call);
            EXPECT_EQ(log.lines(), Lines{line});
        };
        only("Model: setNormalVolume(0.500)", [&] { model.setNormalVolume(0.5f); });
        only("Model: setNormalTreble(0.500)", [&] { model.setNormalTreble(0.5f); });
        only("Model: setNormalMiddle(0.500)", [&] { model.setNormalMiddle(0.5f); });
        only("Model: setNormalBass(0.500)", [&] { model.setNormalBass(0.5f); });
        only("Model: setNormalBrightSwitch(1)", [&] { model.setNormalBrightSwitch(true); });
        only("Model: setVibratoVolume(0.500)", [&] { model.setVibratoVolume(0.5f); });
        only("Model: setVibratoTreble(0.500)", [&] { model.setVibratoTreble(0.5f); });
        only("Model: setVibratoMiddle(0.500)", [&] { model.setVibratoMiddle(0.5f); });
        only("Model: setVibratoBass(0.500)", [&] { model.setVibratoBass(0.5f); });
        only("Model: setVibratoReverb(0.500)", [&] { model.setVibratoReverb(0.5f); });
        only("Model: setVibratoReverbMute(0)", [&] { model.setVibratoReverbMute(false); });
        only("Model: setVibratoSpeed(0.500)", [&] { model.setVibratoSpeed(0.5f); });
        only("Model: setVibratoIntensity(0.500)", [&] { model.setVibratoIntensity(0.5f); });
        only("Model: setVibratoBrightSwitch(1)", [&] { model.setVibratoBrightSwitch(true); });
        only("Model: setVibratoTremoloMute(1)", [&] { model.setVibratoTremoloMute(true); });
        only("Model: setStandbySwitch(1)", [&] { model.setStandbySwitch(true); });
        only("Model: setCabsim(none)", [&] { model.setCabsim("none"); });
        only("Model: setCabsimHPF(80.000000)", [&] { model.setCabsimHPF(80.0f); });
        only("Model: setCabsimLPF(8000.000000)", [&] { model.setCabsimLPF(8000.0f); });
        only("Model: setCabsimLevel(-3.000000)", [&] { model.setCabsimLevel(-3.0f); });
        only("Model: setReverbTaper(1)", [&] { model.setReverbTaper(1); });
        only("Model: setMasterVolume(0.500)", [&] { model.setMasterVolume(0.5f); });
        for (const int position : {0, 1, 2})
            only(("Model: setCabsimTestMode(" + std::to_string(position) + ")").c_str(),
                 [&] { model.setCabsimTestMode(position); });
    });
}

TEST_F(ModelTest, EveryForwarderReachesItsControlOfTheFlagship) {
    with([&](Model& model) {
        model.setAudioProcessingPreset(2);
        const auto reaches = [&](const char* line, auto call) {
            log.clear();
            call();
            const Lines lines = log.lines();
            EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [line](const std::string& text) {
                return text.size() > 2 && text.substr(text.find(": ") + 2) == line;
            })) << line;
        };
        reaches("setNormalVol(0.250)", [&] { model.setNormalVolume(0.25f); });
        reaches("setNormalTreb(0.250)", [&] { model.setNormalTreble(0.25f); });
        reaches("setNormalMid(0.250)", [&] { model.setNormalMiddle(0.25f); });
        reaches("setNormalBass(0.250)", [&] { model.setNormalBass(0.25f); });
        reaches("setNormalBright(1)", [&] { model.setNormalBrightSwitch(true); });
        reaches("setVibratoVol(0.250)", [&] { model.setVibratoVolume(0.25f); });
        reaches("setVibratoTreb(0.250)", [&] { model.setVibratoTreble(0.25f); });
        reaches("setVibratoMid(0.250)", [&] { model.setVibratoMiddle(0.25f); });
        reaches("setVibratoBass(0.250)", [&] { model.setVibratoBass(0.25f); });
        reaches("setVibratoBright(1)", [&] { model.setVibratoBrightSwitch(true); });
        reaches("setReverb(0.250)", [&] { model.setVibratoReverb(0.25f); });
        reaches("setReverbMute(1)", [&] { model.setVibratoReverbMute(true); });
        reaches("setSpeed(0.250)", [&] { model.setVibratoSpeed(0.25f); });
        reaches("setIntensity(0.250)", [&] { model.setVibratoIntensity(0.25f); });
        reaches("setTremoloMute(1)", [&] { model.setVibratoTremoloMute(true); });
        reaches("setCabinet(a.wav)", [&] { model.setCabsim("a.wav"); });
        reaches("setCabinetHPF(80.000)", [&] { model.setCabsimHPF(80.0f); });
        reaches("setCabinetLPF(8000.000)", [&] { model.setCabsimLPF(8000.0f); });
        reaches("setCabinetLevel(-3.000)", [&] { model.setCabsimLevel(-3.0f); });
        reaches("setReverbTaper(1)", [&] { model.setReverbTaper(1); });
        reaches("setCabinet(none)", [&] { model.setCabsimTestMode(1); });
    });
}

TEST_F(ModelTest, ATestCabinetBeyondTheThirdIsAnError) {
    with([&](Model& model) {
        for (const int position : {3, -1}) {
            log.clear();
            model.setCabsimTestMode(position);
            EXPECT_EQ(log.startingWith("Error "),
                      Lines{"Error invalid cabsim selected, " + std::to_string(position)});
        }
    });
}

TEST_F(ModelTest, LoadsAndKnobsFromTwoThreadsTakeTurns) {
    with([](Model& model) {
        std::thread loads([&model] {
            for (int round = 0; round < 10; ++round)
                model.setAudioProcessingPreset(round % 5);
        });
        for (int round = 0; round < 300; ++round) {
            const float position = static_cast<float>(round % 11) / 10.0f;
            model.setNormalVolume(position);
            model.setVibratoTreble(position);
            model.setNormalBrightSwitch(round % 2 == 0);
            model.panel().normalVolume.set(position);
        }
        loads.join();
        EXPECT_EQ(model.getXrunCount(), 0);
    });
}

}  // namespace
