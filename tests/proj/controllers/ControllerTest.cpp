#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "proj/controllers/Controller.h"
#include "support/card/AmplifierOnCard.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kUserIRs = "/mnt/user-data/userIRs/";

class ControllerTest : public testing::Test {
protected:
    // The lines of one tag, or several, that a call leaves, in order.
    template <typename Call>
    Lines linesOf(const Lines& tags, Call call) {
        log.clear();
        call();
        Lines found;
        for (const std::string& line : log.lines())
            if (std::any_of(tags.begin(), tags.end(),
                            [&](const std::string& tag) { return line.rfind(tag, 0) == 0; }))
                found.push_back(line);
        return found;
    }
    template <typename Call>
    Lines actionsOf(Call call) {
        return linesOf({"Controller: ", "Warn Unsupported", "Warn Invalid"}, call);
    }
    template <typename Call>
    Lines engineLinesOf(Call call) {
        return linesOf({"Model: "}, call);
    }
    Lines cabinetLines(int slot) const {
        const char* const names[] = {"a", "b", "c"};
        const char* const rest[][3] = {{"30", "9000", "-1"}, {"40", "8000", "-2"}, {"50", "7000", "-3"}};
        return {"Model: setCabsim(" + kUserIRs + names[slot] + ")",
                std::string("Model: setCabsimHPF(") + rest[slot][0] + ".000000)",
                std::string("Model: setCabsimLPF(") + rest[slot][1] + ".000000)",
                std::string("Model: setCabsimLevel(") + rest[slot][2] + ".000000)"};
    }
    // Drops a client that says nothing, and returns when the cabinet switch has the cabinet again.
    void loseClient() {
        log.clear();
        amp.clock.advanceUntil(
            [&] {
                return !amp.client->isConnectionOpen(1) &&
                       !log.startingWith("Controller: cabsimController(").empty();
            },
            std::chrono::milliseconds(100));
        // Waits for the action to end.
        amp.controller->isTestMode();
    }

    AmplifierOnCard amp;
    LogRecorder& log = amp.log;
    Controller& controller = *amp.controller;
    PanelState& panel = amp.model->panel();
};

TEST_F(ControllerTest, EveryKnobIsLoggedAppliedAndStored) {
    struct Knob {
        void (Controller::*turn)(float);
        PanelValue<float> PanelState::*stored;
        const char* action;
        const char* setter;
    };
    const Knob knobs[] = {
        {&Controller::vibratoReverbController, &PanelState::vibratoReverb, "vibratoReverb", "VibratoReverb"},
        {&Controller::vibratoBassController, &PanelState::vibratoBass, "vibratoBass", "VibratoBass"},
        {&Controller::vibratoMiddleController, &PanelState::vibratoMiddle, "vibratoMiddle", "VibratoMiddle"},
        {&Controller::vibratoTrebleController, &PanelState::vibratoTreble, "vibratoTreble", "VibratoTreble"},
        {&Controller::vibratoVolumeController, &PanelState::vibratoVolume, "vibratoVolume", "VibratoVolume"},
        {&Controller::normalBassController, &PanelState::normalBass, "normalBass", "NormalBass"},
        {&Controller::normalMiddleController, &PanelState::normalMiddle, "normalMiddle", "NormalMiddle"},
        {&Controller::normalTrebleController, &PanelState::normalTreble, "normalTreble", "NormalTreble"},
        {&Controller::normalVolumeController, &PanelState::normalVolume, "normalVolume", "NormalVolume"},
        {&Controller::vibratoIntensityController, &PanelState::vibratoIntensity, "vibratoIntensity",
         "VibratoIntensity"},
        {&Controller::vibratoSpeedController, &PanelState::vibratoSpeed, "vibratoSpeed", "VibratoSpeed"}};
    for (const Knob& knob : knobs) {
        EXPECT_EQ(linesOf({""}, [&] { (controller.*knob.turn)(0.25f); }),
                  (Lines{std::string("Controller: ") + knob.action + "Controller(0.250000)",
                         std::string("Model: set") + knob.setter + "(0.250)"}));
        EXPECT_EQ((panel.*knob.stored).get(), 0.25f);
    }
}

TEST_F(ControllerTest, EverySwitchIsLoggedAppliedAndStored) {
    EXPECT_EQ(linesOf({""}, [&] { controller.standbySwitchController(true); }),
              (Lines{"Controller: standbySwitchController(1)", "Model: setStandbySwitch(1)"}));
    EXPECT_EQ(panel.standby.get(), 1);
    EXPECT_EQ(linesOf({""}, [&] { controller.vibratoBrightSwitchController(true); }),
              (Lines{"Controller: vibratoBrightSwitchController(1)", "Model: setVibratoBrightSwitch(1)"}));
    EXPECT_TRUE(panel.vibratoBright.get());
    EXPECT_EQ(linesOf({""}, [&] { controller.normalBrightSwitchController(true); }),
              (Lines{"Controller: normalBrightSwitchController(1)", "Model: setNormalBrightSwitch(1)"}));
    EXPECT_TRUE(panel.normalBright.get());
}

TEST_F(ControllerTest, AFootswitchThatIsOnUnmutesItsEffect) {
    EXPECT_EQ(linesOf({""}, [&] { controller.footswitchReverbController(1); }),
              (Lines{"Controller: footswitchReverbController(1)", "Model: setVibratoReverbMute(0)"}));
    EXPECT_TRUE(panel.footswitchReverb.get());
    EXPECT_EQ(linesOf({""}, [&] { controller.footswitchReverbController(0); }),
              (Lines{"Controller: footswitchReverbController(0)", "Model: setVibratoReverbMute(1)"}));
    EXPECT_FALSE(panel.footswitchReverb.get());
    EXPECT_EQ(linesOf({""}, [&] { controller.footswitchVibratoController(1); }),
              (Lines{"Controller: footswitchVibratoController(1)", "Model: setVibratoTremoloMute(0)"}));
    EXPECT_TRUE(panel.footswitchVibrato.get());
    EXPECT_EQ(linesOf({""}, [&] { controller.footswitchVibratoController(0); }),
              (Lines{"Controller: footswitchVibratoController(0)", "Model: setVibratoTremoloMute(1)"}));
    EXPECT_FALSE(panel.footswitchVibrato.get());
}

TEST_F(ControllerTest, TheTwoWithoutAnEffectLogTheirLines) {
    EXPECT_EQ(linesOf({""}, [&] { controller.setPageController(2); }),
              Lines{"Controller: setPageController set pageNumber: 2"});
    EXPECT_EQ(linesOf({""}, [&] { controller.testBoolController(true); }),
              Lines{"Controller: testBoolController  Do nothing"});
}

TEST_F(ControllerTest, TheCabinetSwitchTakesItsSlotToTheEngine) {
    for (const int position : {2, 0, 1}) {
        EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(position); }), cabinetLines(position));
        EXPECT_EQ(panel.cabsim.get(), position);
    }
}

TEST_F(ControllerTest, ACabinetPositionBeyondTheThirdActsAsTheFirstAndIsStoredAsItIs) {
    for (const int position : {3, -1}) {
        EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(position); }), cabinetLines(0));
        EXPECT_EQ(log.count("Warn Unsupported cabsim value " + std::to_string(position)), 1);
        EXPECT_EQ(panel.cabsim.get(), position);
    }
}

TEST_F(ControllerTest, EachProductLoadsItsPresetAndIsStored) {
    const char* const lines[] = {"Controller: Loading Arvel preset", "Controller: Loading Corvin preset",
                                 "Controller: Loading Lisko preset",
                                 "Controller: Loading Sorrel Reverb preset"};
    const char* const presets[] = {
        "Model: setAudioProcessingPreset(ArvelReverb65)", "Model: setAudioProcessingPreset(CorvinReverb65)",
        "Model: setAudioProcessingPreset(LiskoReverb65", "Model: setAudioProcessingPreset(SorrelReverb)"};
    for (int id = 0; id < 4; ++id) {
        const Lines said =
            linesOf({"Controller: ", "Model: setAudio"}, [&] { controller.productIdController(id); });
        ASSERT_GT(said.size(), 3u);
        EXPECT_EQ(said[0], "Controller: productIdController(" + std::to_string(id) + ")");
        EXPECT_EQ(said[1], lines[id]);
        EXPECT_EQ(said[2], presets[id]);
        EXPECT_EQ(panel.productId.get(), id);
        EXPECT_EQ(amp.cabsim->getCurrentAmplifier(), id);
        EXPECT_FALSE(controller.isTestMode());
    }
}

TEST_F(ControllerTest, TheAmplifierIsToldToTheCatalogueFirstThenToTheCabinetAfterThePresetBeforeTheReplay) {
    const nod::connection first =
        amp.factoryIRs->addAmplifierObserver([](int id) { tvk::log::debug("Told", "catalogue %d", id); });
    const nod::connection second =
        amp.cabsim->addAmplifierObserver([](int id) { tvk::log::debug("Told", "cabinet %d", id); });
    const Lines said = linesOf({"Told: ", "Model: setAudio", "Controller: cabsimController"},
                               [&] { controller.productIdController(0); });
    EXPECT_EQ(said, (Lines{"Model: setAudioProcessingPreset(ArvelReverb65)", "Told: catalogue 0",
                           "Told: cabinet 0", "Controller: cabsimController(0)"}));
}

TEST_F(ControllerTest, TheReplayHasItsOrder) {
    controller.cabsimController(1);
    controller.normalVolumeController(0.5f);
    controller.footswitchReverbController(1);
    EXPECT_EQ(
        actionsOf([&] { controller.productIdController(0); }),
        (Lines{"Controller: productIdController(0)", "Controller: Loading Arvel preset",
               "Controller: cabsimController(1)", "Controller: normalTrebleController(0.000000)",
               "Controller: normalBassController(0.000000)", "Controller: vibratoTrebleController(0.000000)",
               "Controller: vibratoBassController(0.000000)", "Controller: normalBrightSwitchController(0)",
               "Controller: normalMiddleController(0.000000)", "Controller: vibratoBrightSwitchController(0)",
               "Controller: vibratoMiddleController(0.000000)",
               "Controller: vibratoReverbController(0.000000)",
               "Controller: vibratoIntensityController(0.000000)",
               "Controller: vibratoSpeedController(0.000000)", "Controller: footswitchReverbController(1)",
               "Controller: footswitchVibratoController(0)", "Controller: standbySwitchController(0)",
               "Controller: normalVolumeController(0.500000)",
               "Controller: vibratoVolumeController(0.000000)"}));
}

TEST_F(ControllerTest, OtherProductsHaveNoBrightSwitchesAndMiddles) {
    for (const int id : {1, 2, 3, 7}) {
        const Lines said = actionsOf([&] { controller.productIdController(id); });
        EXPECT_EQ(said.size(), 2u + 13u);
        for (const std::string& line : said) {
            EXPECT_EQ(line.find("Bright"), std::string::npos) << line;
            EXPECT_EQ(line.find("Middle"), std::string::npos) << line;
        }
    }
}

TEST_F(ControllerTest, AProductThatArrivesAgainLoadsItsPresetAgainAndReplays) {
    const Lines first = actionsOf([&] { controller.productIdController(0); });
    const Lines second = actionsOf([&] { controller.productIdController(0); });
    EXPECT_EQ(first, second);
    EXPECT_EQ(log.count("Model: setAudioProcessingPreset(ArvelReverb65)"), 1);
}

TEST_F(ControllerTest, APositionBeyondTheThirdDoesNotStopTheReplay) {
    controller.cabsimController(9);
    const Lines said = actionsOf([&] { controller.productIdController(0); });
    EXPECT_EQ(std::count(said.begin(), said.end(), "Warn Unsupported cabsim value 9"), 1);
    EXPECT_EQ(said.back(), "Controller: vibratoVolumeController(0.000000)");
}

TEST_F(ControllerTest, ReplayedKnobsReachTheNewAmplifier) {
    controller.normalVolumeController(0.625f);
    log.clear();
    controller.productIdController(0);
    const Lines lines = log.lines();
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find(": setNormalVol(0.625)") != std::string::npos;
    }));
}

TEST_F(ControllerTest, AnyOtherProductMeansTestMode) {
    for (const int id : {4, -1, 2147483647}) {
        const Lines said = linesOf({"Warn Invalid", "Model: setAudio", "Model: setCab"},
                                   [&] { controller.productIdController(id); });
        EXPECT_EQ(said, (Lines{"Warn Invalid product id (" + std::to_string(id) + "), loading test preset",
                               "Model: setAudioProcessingPreset(TestModePassthru)",
                               "Model: setCabsimTestMode(0)"}));
        EXPECT_EQ(panel.productId.get(), id);
        EXPECT_TRUE(controller.isTestMode());
        EXPECT_EQ(amp.cabsim->getCurrentAmplifier(), std::nullopt);
    }
}

TEST_F(ControllerTest, InTestModeTheSwitchSelectsTestCabinets) {
    controller.productIdController(99);
    for (const int position : {1, 2, 0}) {
        EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(position); }),
                  Lines{"Model: setCabsimTestMode(" + std::to_string(position) + ")"});
        EXPECT_EQ(panel.cabsim.get(), position);
    }
    EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(5); }), Lines{"Model: setCabsimTestMode(0)"});
}

TEST_F(ControllerTest, TestModeStaysWhenAnAmplifierIsFoundAfterAll) {
    controller.productIdController(99);
    controller.productIdController(0);
    EXPECT_TRUE(controller.isTestMode());
    EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(1); }), Lines{"Model: setCabsimTestMode(1)"});
}

TEST_F(ControllerTest, TheFifthPressMeansTestModeAndCountsAnew) {
    controller.productIdController(0);
    for (int press = 1; press <= 4; ++press)
        EXPECT_EQ(actionsOf([&] { controller.firmwareUpdateController(); }),
                  Lines{"Controller: buttonPressed(FirmwareUpdate) " + std::to_string(press) + " times"});
    EXPECT_FALSE(controller.isTestMode());
    const Lines said =
        linesOf({"Controller: ", "Model: set"}, [&] { controller.firmwareUpdateController(); });
    EXPECT_EQ(said[0], "Controller: buttonPressed(FirmwareUpdate) 5 times");
    EXPECT_EQ(said[1], "Model: setAudioProcessingPreset(TestModePassthru)");
    EXPECT_EQ(said[2], "Controller: cabsimController(0)");
    EXPECT_EQ(said[3], "Model: setCabsimTestMode(0)");
    EXPECT_EQ(said.back(), "Model: setVibratoVolume(0.000)");
    EXPECT_TRUE(controller.isTestMode());
    EXPECT_EQ(panel.productId.get(), 0);
    EXPECT_EQ(actionsOf([&] { controller.firmwareUpdateController(); }),
              Lines{"Controller: buttonPressed(FirmwareUpdate) 1 times"});
}

TEST_F(ControllerTest, AClientThatConnectsTakesTheSlotOfTheSwitch) {
    controller.cabsimController(2);
    EXPECT_EQ(engineLinesOf([&] { amp.connectClient(); }), cabinetLines(2));
    EXPECT_EQ(amp.cabsim->getVirtualCabsim(), 2u);
}

TEST_F(ControllerTest, AStoredPositionBeyondTheThirdIsTheFirstWhenAClientConnects) {
    controller.cabsimController(2);
    controller.cabsimController(7);
    EXPECT_EQ(engineLinesOf([&] { amp.connectClient(); }), cabinetLines(0));
    EXPECT_EQ(amp.cabsim->getVirtualCabsim(), 0u);
}

TEST_F(ControllerTest, WhileAClientIsConnectedTheSwitchIsOnlyStoredAndAppliedWhenItIsGone) {
    amp.connectClient();
    EXPECT_EQ(engineLinesOf([&] { controller.cabsimController(1); }), Lines{});
    EXPECT_EQ(panel.cabsim.get(), 1);
    loseClient();
    const Lines said = log.startingWith("Model: ");
    ASSERT_GE(said.size(), 4u);
    EXPECT_EQ(Lines(said.end() - 4, said.end()), cabinetLines(1));
}

TEST_F(ControllerTest, WhatAClientLeftUnsavedIsDropped) {
    amp.connectClient();
    amp.cabsim->setCabHPF(0, 200.0f);
    amp.cabsim->setCabLevel(2, -20.0f);
    EXPECT_EQ(amp.cabsim->getCabHPF(0), 200.0f);
    loseClient();
    EXPECT_EQ(amp.cabsim->getCabHPF(0), 30.0f);
    EXPECT_EQ(amp.cabsim->getCabLevel(2), -3.0f);
}

TEST_F(ControllerTest, APresetThatIsLoadedWhileAClientIsConnectedGetsTheClientsSlot) {
    controller.productIdController(0);
    amp.connectClient();
    amp.cabsim->setVirtualCabsim(2);
    controller.cabsimController(1);
    const Lines said = linesOf({"Model: setCabsim"}, [&] { controller.productIdController(0); });
    EXPECT_EQ(said, cabinetLines(2));
}

TEST_F(ControllerTest, AChangeThatHasBeenOvertakenDoesNothing) {
    EXPECT_EQ(engineLinesOf([&] { controller.connectionStateChanged(true); }), Lines{});
    amp.connectClient();
    EXPECT_EQ(engineLinesOf([&] { controller.connectionStateChanged(false); }), Lines{});
}

TEST_F(ControllerTest, OneThatIsGoneIsNotToldOfConnections) {
    amp.controller.reset();
    EXPECT_EQ(linesOf({"Model: ", "Controller: "}, [&] { amp.connectClient(); }), Lines{});
}

TEST_F(ControllerTest, ActionsOfSeveralThreadsTakeTurns) {
    std::thread panelThread([&] {
        for (int i = 0; i < 200; ++i) {
            controller.normalVolumeController(static_cast<float>(i % 10) / 10.0f);
            controller.cabsimController(i % 3);
        }
    });
    std::thread buttonThread([&] {
        for (int i = 0; i < 4; ++i)
            controller.firmwareUpdateController();
    });
    amp.connectClient();
    panelThread.join();
    buttonThread.join();
    EXPECT_EQ(panel.cabsim.get(), 199 % 3);
    EXPECT_EQ(panel.normalVolume.get(), 0.9f);
    EXPECT_LT(amp.cabsim->getVirtualCabsim(), 3u);
}

}  // namespace
