// The whole chain: bytes on the serial line, the receiver, the signals, the page's bindings, the controller,
// the model's panel state.
#include <bit>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/comm/FrameBuilder.h"
#include "proj/views/controls/HW_Page1.h"
#include "proj/views/controls/HW_Page2.h"
#include "proj/views/controls/PageManager.h"
#include "proj/views/controls/PageManagerThread.h"
#include "proj/views/controls/View.h"
#include "support/PtyPair.h"
#include "support/card/AmplifierOnCard.h"

using tvk::comm::VariableType;

namespace {

using Lines = std::vector<std::string>;

class PanelToModelTest : public testing::Test {
protected:
    std::string frameOf(const char* name, int value) {
        const auto frame = builder.build(name, value);
        return {frame.begin(), frame.end()};
    }
    std::string frameOf(const char* name, float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        const std::uint8_t bytes[] = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                      static_cast<std::uint8_t>(bits >> 16),
                                      static_cast<std::uint8_t>(bits >> 24)};
        const auto frame = builder.build(VariableType::Float, name, bytes);
        return {frame.begin(), frame.end()};
    }

    PtyPair pty;
    AmplifierOnCard amp;
    LogRecorder& log = amp.log;
    tvk::comm::FrameBuilder builder;
    PanelState& panel = amp.model->panel();
};

TEST_F(PanelToModelTest, EveryPinEndsInItsValueOfThePanelState) {
    FrontPanelSignals signals;
    PageManager pages(1, *amp.controller, signals);
    ControlMessageReceiver receiver(pty.path(), signals);
    struct Knob {
        const char* pin;
        PanelValue<float> PanelState::*stored;
    };
    const Knob knobs[] = {{"PA_0", &PanelState::vibratoReverb}, {"PA_1", &PanelState::vibratoBass},
                          {"PA_2", &PanelState::vibratoMiddle}, {"PA_3", &PanelState::vibratoTreble},
                          {"PA_4", &PanelState::vibratoVolume}, {"PA_5", &PanelState::normalBass},
                          {"PA_6", &PanelState::normalMiddle},  {"PA_7", &PanelState::normalTreble},
                          {"PB_0", &PanelState::normalVolume},  {"PC_0", &PanelState::vibratoIntensity},
                          {"PC_1", &PanelState::vibratoSpeed}};
    float value = 0.0f;
    for (const Knob& knob : knobs) {
        value += 0.0625f;
        pty.deliver(frameOf(knob.pin, value));
        receiver.pass();
        EXPECT_EQ((panel.*knob.stored).get(), value) << knob.pin;
    }
    pty.deliver(frameOf("PC_10", 1) + frameOf("PF_4", 1) + frameOf("PF_5", 1) + frameOf("PB_1", 0.5f) +
                frameOf("PB2_AND_PB10", 2) + frameOf("PF0_AND_PF1", 3));
    receiver.pass();
    EXPECT_EQ(panel.standby.get(), 1);
    EXPECT_TRUE(panel.vibratoBright.get());
    EXPECT_TRUE(panel.normalBright.get());
    EXPECT_FALSE(panel.footswitchReverb.get());
    EXPECT_TRUE(panel.footswitchVibrato.get());
    EXPECT_EQ(panel.cabsim.get(), 2);
    EXPECT_EQ(panel.productId.get(), 3);
}

TEST_F(PanelToModelTest, APageThatIsGoneBindsNothing) {
    FrontPanelSignals signals;
    auto pages = std::make_unique<PageManager>(1, *amp.controller, signals);
    signals.of(Pot::VibratoVolume)(0.25f);
    EXPECT_EQ(panel.vibratoVolume.get(), 0.25f);
    pages.reset();
    signals.of(Pot::VibratoVolume)(0.75f);
    EXPECT_EQ(panel.vibratoVolume.get(), 0.25f);
}

TEST_F(PanelToModelTest, TheFactoryMakesPageOneForEveryNumberButTwo) {
    FrontPanelSignals signals;
    PageFactory factory;
    for (const int number : {1, 7, 0, -1})
        EXPECT_NE(dynamic_cast<HW_Page1*>(factory.makePage(number, *amp.controller, signals).get()), nullptr);
    EXPECT_NE(dynamic_cast<HW_Page2*>(factory.makePage(2, *amp.controller, signals).get()), nullptr);
}

TEST_F(PanelToModelTest, BothPagesBindTheControlsAndHaveNothingToDraw) {
    FrontPanelSignals signals;
    for (const int number : {1, 2}) {
        PageManager pages(number, *amp.controller, signals);
        EXPECT_EQ(pages.getPageNumber(), number);
        const float value = 0.25f * static_cast<float>(number);
        signals.of(Pot::NormalBass)(value);
        EXPECT_EQ(panel.normalBass.get(), value);
        log.clear();
        pages.currentPage().render();
        EXPECT_EQ(log.lines(), Lines{"HW_Page" + std::to_string(number) + ": undefined render call"});
    }
}

TEST_F(PanelToModelTest, ThePageThreadHasItsName) {
    FrontPanelSignals signals;
    PageManager pages(1, *amp.controller, signals);
    {
        PageManagerThread thread(pages);
        thread.start();
        amp.clock.release();
    }
    EXPECT_TRUE(log.has("TarvekThreadUsage: thread: PageMgrThread"));
}

class ViewTest : public PanelToModelTest {
protected:
    ViewTest() {
        amp.platform.uartDevice = pty.path();
        amp.platform.gpioRoot = amp.folder.file("gpio");
        amp.platform.buttonPollEvents = POLLIN;
        std::filesystem::create_directories(amp.folder.path() / "gpio/gpio110");
        mkfifo(amp.folder.file("gpio/gpio110/value").c_str(), 0600);
        button = open(amp.folder.file("gpio/gpio110/value").c_str(), O_RDWR);
        view = std::make_unique<View>(*amp.controller, *amp.model, amp.systemInfo, amp.platform);
    }
    ~ViewTest() override {
        amp.clock.release();
        view.reset();
        close(button);
    }

    int button = -1;
    std::unique_ptr<View> view;
};

TEST_F(ViewTest, AsksForTheProductAndTheControlsAtItsEnd) {
    const std::string wanted =
        frameOf("BOOTING", 0) + frameOf("GET_PRODUCT_ID", 1) + frameOf("GET_CURRENT_VALUES", 1);
    EXPECT_EQ(pty.receive(wanted.size()), wanted);
}

TEST_F(ViewTest, TheAnswersLoadTheAmplifierAndReplayThePanel) {
    pty.send(frameOf("PB_0", 0.625f) + frameOf("PF0_AND_PF1", 0));
    amp.clock.advanceUntil([&] { return log.has("Controller: vibratoVolumeController(0.000000)"); });
    EXPECT_EQ(log.count("Model: setAudioProcessingPreset(ArvelReverb65)"), 1);
    EXPECT_TRUE(log.has("Controller: normalVolumeController(0.625000)"));
    EXPECT_EQ(panel.normalVolume.get(), 0.625f);
}

TEST_F(ViewTest, FivePressesMeanTestMode) {
    ASSERT_EQ(write(button, "1\n0\n1\n0\n1\n0\n1\n0\n1\n0\n", 20), 20);
    amp.clock.advanceUntil([&] { return log.has("Model: setCabsimTestMode(0)"); });
    EXPECT_TRUE(amp.controller->isTestMode());
    EXPECT_EQ(log.count("Model: setAudioProcessingPreset(TestModePassthru)"), 1);
}

}  // namespace
