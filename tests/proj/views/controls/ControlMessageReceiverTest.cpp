#include <atomic>
#include <bit>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/comm/FrameBuilder.h"
#include "proj/views/controls/ControlMessageReceiver.h"
#include "support/HeldClock.h"
#include "support/LogRecorder.h"
#include "support/PtyPair.h"

using tvk::comm::VariableType;

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kNoPort = "/nowhere/uart";

// What the signals say, as "pot 4 0.500000".
class SignalNotes {
public:
    explicit SignalNotes(FrontPanelSignals& signals) {
        for (int i = 0; i < 11; ++i)
            keep(signals.of(static_cast<Pot>(i)), "pot", i);
        for (int i = 0; i < 5; ++i)
            keep(signals.of(static_cast<OnOffSwitch>(i)), "switch", i);
        for (int i = 0; i < 2; ++i)
            keep(signals.of(static_cast<MultiPositionSwitch>(i)), "multi", i);
    }

    Lines take() { return std::exchange(notes_, {}); }

private:
    template <typename Value>
    void keep(nod::signal_type<Value>& signal, const std::string& kind, int index) {
        const std::string start = kind + " " + std::to_string(index) + " ";
        connections_.push_back(
            signal.connect([this, start](Value value) { notes_.push_back(start + std::to_string(value)); }));
    }

    std::vector<nod::connection> connections_;
    Lines notes_;
};

class ControlMessageReceiverTest : public testing::Test {
protected:
    void send(const char* name, float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        sendBytes(VariableType::Float, name, bits);
    }
    void send(const char* name, int value) {
        sendBytes(VariableType::Int32, name, static_cast<std::uint32_t>(value));
    }
    void sendBytes(VariableType type, const char* name, std::uint32_t bits) {
        const std::uint8_t bytes[] = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                      static_cast<std::uint8_t>(bits >> 16),
                                      static_cast<std::uint8_t>(bits >> 24)};
        pty.deliver(builder.build(type, name, bytes));
    }
    template <typename Value>
    Lines after(const char* name, Value value) {
        send(name, value);
        receiver.pass();
        return notes.take();
    }

    PtyPair pty;
    LogRecorder log;
    FrontPanelSignals signals;
    SignalNotes notes{signals};
    ControlMessageReceiver receiver{pty.path(), signals};
    tvk::comm::FrameBuilder builder;
};

TEST_F(ControlMessageReceiverTest, NothingIsToldBeforeAFrame) {
    receiver.pass();
    receiver.pass();
    EXPECT_EQ(notes.take(), Lines{});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(ControlMessageReceiverTest, EveryKnobReachesItsSignalUnderItsHandlersName) {
    const std::pair<const char*, const char*> knobs[] = {
        {"PA_0", "CH2_REVERB"}, {"PA_1", "CH2_BASS"},      {"PA_2", "CH2_MIDDLE"}, {"PA_3", "CH2_TREBLE"},
        {"PA_4", "CH2_VOLUME"}, {"PA_5", "CH1_BASS"},      {"PA_6", "CH1_MIDDLE"}, {"PA_7", "CH1_TREBLE"},
        {"PB_0", "CH1_VOLUME"}, {"PC_0", "CH2_INTENSITY"}, {"PC_1", "CH2_SPEED"}};
    int index = 0;
    for (const auto& [pin, handler] : knobs) {
        log.clear();
        EXPECT_EQ(after(pin, 0.25f), Lines{"pot " + std::to_string(index++) + " 0.250000"}) << pin;
        EXPECT_EQ(log.lines(),
                  Lines{std::string("ControlMessageReceiver: messageHandler_") + handler + "(0.250000)"});
    }
}

TEST_F(ControlMessageReceiverTest, EverySwitchReachesItsSignalUnderItsHandlersName) {
    EXPECT_EQ(after("PC_10", 1), Lines{"switch 2 1"});
    EXPECT_EQ(after("PF_4", 1), Lines{"switch 3 1"});
    EXPECT_EQ(after("PF_5", 0), Lines{"switch 4 0"});
    EXPECT_EQ(after("PB2_AND_PB10", 2), Lines{"multi 0 2"});
    EXPECT_EQ(after("PF0_AND_PF1", 3), Lines{"multi 1 3"});
    EXPECT_EQ(log.lines(), (Lines{"ControlMessageReceiver: messageHandler_STBY_DETECT(1)",
                                  "ControlMessageReceiver: messageHandler_CH2_BRIGHT(1)",
                                  "ControlMessageReceiver: messageHandler_CH1_BRIGHT(0)",
                                  "ControlMessageReceiver: messageHandler_CAB(2)",
                                  "FrontPanelProxy: updateMultiPositionSwitch(0, 2)",
                                  "ControlMessageReceiver: messageHandler_PRODUCT_ID(3)",
                                  "FrontPanelProxy: updateMultiPositionSwitch(1, 3)"}));
}

TEST_F(ControlMessageReceiverTest, ARepeatedValueFiresNothing) {
    EXPECT_EQ(after("PA_4", 0.5f).size(), 1u);
    EXPECT_EQ(after("PA_4", 0.5f), Lines{});
    EXPECT_EQ(after("PC_10", 1).size(), 1u);
    EXPECT_EQ(after("PC_10", 1), Lines{});
    receiver.pass();
    EXPECT_EQ(notes.take(), Lines{});
}

TEST_F(ControlMessageReceiverTest, TheFirstValueFiresWhateverItIs) {
    EXPECT_EQ(after("PA_4", 0.0f), Lines{"pot 4 0.000000"});
    EXPECT_EQ(after("PF_4", 0), Lines{"switch 3 0"});
    EXPECT_EQ(after("PF0_AND_PF1", -1), Lines{"multi 1 -1"});
    EXPECT_EQ(after("PF0_AND_PF1", -1), Lines{}) << "and only once";
    EXPECT_EQ(after("PA_3", -1.0f), Lines{"pot 3 0.000000"});
}

TEST_F(ControlMessageReceiverTest, KnobsAreLimitedToTheirWay) {
    EXPECT_EQ(after("PA_0", 1.5f), Lines{"pot 0 1.000000"});
    EXPECT_EQ(after("PA_0", 1e30f), Lines{}) << "still at the end of its way";
    EXPECT_EQ(after("PA_0", -0.25f), Lines{"pot 0 0.000000"});
    EXPECT_EQ(after("PA_0", 0.75f), Lines{"pot 0 0.750000"});
}

TEST_F(ControlMessageReceiverTest, OfSeveralValuesInAPassTheLastIsTold) {
    send("PA_4", 0.1f);
    send("PA_4", 0.2f);
    send("PA_4", 0.3f);
    receiver.pass();
    EXPECT_EQ(notes.take(), Lines{"pot 4 0.300000"});
}

TEST_F(ControlMessageReceiverTest, AFrameMayArriveByteByByte) {
    for (const std::uint8_t byte : builder.build("PF_5", 1)) {
        EXPECT_EQ(notes.take(), Lines{});
        pty.deliver(std::string(1, static_cast<char>(byte)));
        receiver.pass();
    }
    EXPECT_EQ(notes.take(), Lines{"switch 4 1"});
}

TEST_F(ControlMessageReceiverTest, AValueOfAnotherTypeOrNameIsDroppedWithoutAWord) {
    EXPECT_EQ(after("PA_4", 1), Lines{});
    EXPECT_EQ(after("PF_4", 0.5f), Lines{});
    EXPECT_EQ(after("PZ_9", 0.5f), Lines{});
    EXPECT_EQ(after("pa_4", 0.5f), Lines{});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(ControlMessageReceiverTest, ADamagedFrameIsDroppedWithoutAWordAndTheNextIsTaken) {
    const auto frame = builder.build("PF_4", 1);
    std::string damaged(frame.begin(), frame.end());
    damaged[9] = static_cast<char>(damaged[9] ^ 0x10);
    pty.deliver(damaged);
    EXPECT_EQ(after("PF_5", 1), Lines{"switch 4 1"});
    EXPECT_EQ(log.lines(), Lines{"ControlMessageReceiver: messageHandler_CH1_BRIGHT(1)"});
}

TEST_F(ControlMessageReceiverTest, TheFootswitchesFollowTheirThresholdsReverbFirst) {
    const Lines codes[] = {{"switch 0 1", "switch 1 1"},
                           {"switch 0 0", "switch 1 1"},
                           {"switch 0 1", "switch 1 0"},
                           {"switch 0 0", "switch 1 0"}};
    struct Case {
        float value;
        int code;
    };
    const Case cases[] = {{1.0f, 0},   {0.0f, 3},   {0.671f, 0}, {0.67f, 1}, {0.68f, 0}, {0.391f, 1},
                          {0.0f, 3},   {0.669f, 1}, {0.39f, 2},  {0.4f, 1},  {0.38f, 2}, {0.6f, 1},
                          {0.105f, 3}, {0.106f, 2}, {0.1f, 3},   {1.0f, 0}};
    for (const Case& c : cases)
        EXPECT_EQ(after("PB_1", c.value), codes[c.code]) << c.value;
}

TEST_F(ControlMessageReceiverTest, TheFootswitchesAreToldOnAChangeOfTheirCodeAlone) {
    EXPECT_EQ(after("PB_1", 0.9f).size(), 2u) << "unknown until the first value";
    EXPECT_EQ(after("PB_1", 0.8f), Lines{});
    EXPECT_EQ(after("PB_1", 0.7f), Lines{});
    EXPECT_EQ(after("PB_1", 0.5f).size(), 2u);
    EXPECT_EQ(log.startingWith("ControlMessageReceiver: messageHandler_FTSW_ADC(").size(), 4u);
}

TEST_F(ControlMessageReceiverTest, TheCabinetSwitchHasThreePositionsAndOthersAreAWarning) {
    for (const int position : {2, 1, 0})
        EXPECT_EQ(after("PB2_AND_PB10", position), Lines{"multi 0 " + std::to_string(position)});
    for (const int wrong : {3, -1, 2147483647}) {
        log.clear();
        EXPECT_EQ(after("PB2_AND_PB10", wrong), Lines{});
        EXPECT_EQ(log.startingWith("Warn "),
                  Lines{"Warn invalid cabsim switch position, " + std::to_string(wrong)});
    }
}

TEST_F(ControlMessageReceiverTest, ChangesOfOnePassAreToldInTheOrderOfTheNames) {
    send("PF0_AND_PF1", 0);
    send("PC_1", 0.5f);
    send("PB2_AND_PB10", 1);
    send("PA_7", 0.5f);
    receiver.pass();
    EXPECT_EQ(notes.take(), (Lines{"pot 7 0.500000", "multi 0 1", "pot 10 0.500000", "multi 1 0"}));
}

TEST_F(ControlMessageReceiverTest, AFaultInAnActionEndsThereAndTheOthersAreCarriedOut) {
    const nod::connection faulty =
        signals.of(Pot::VibratoReverb).connect([](float) { throw std::runtime_error("no such cabinet"); });
    send("PA_0", 0.5f);
    send("PA_1", 0.5f);
    receiver.pass();
    EXPECT_EQ(notes.take(), (Lines{"pot 0 0.500000", "pot 1 0.500000"}));
    EXPECT_EQ(log.startingWith("Error "),
              Lines{"Error a control of the panel was not applied: no such cabinet"});
}

TEST_F(ControlMessageReceiverTest, RequestsGoOutAsFrames) {
    const auto frameOf = [this](const char* name, int value) {
        const auto frame = builder.build(name, value);
        return std::string(frame.begin(), frame.end());
    };
    const std::string wanted = frameOf("BOOTING", 0) + frameOf("GET_PRODUCT_ID", 1) +
                               frameOf("GET_CURRENT_VALUES", 1) + frameOf("CLIPPING", 1) +
                               frameOf("SET_TEST_MODE", 1);
    ControlMessageSender& sender = receiver.sender();
    sender.sendBooting(0);
    sender.sendGetProductId();
    sender.sendGetCurrentValues();
    sender.sendClipping(1);
    sender.sendSetTestMode(1);
    EXPECT_EQ(pty.receive(wanted.size()), wanted);
}

TEST_F(ControlMessageReceiverTest, APassWithinAPassOnlyWarns) {
    ControlMessageReceiverThread thread(receiver);
    const nod::connection again = signals.of(Pot::VibratoBass).connect([&](float) { thread.process(); });
    send("PA_1", 0.5f);
    thread.process();
    EXPECT_EQ(notes.take(), Lines{"pot 1 0.500000"});
    EXPECT_EQ(log.startingWith("Warn "), Lines{"Warn ControlMessageReceiverThread is already running."});
    send("PA_1", 0.6f);
    log.clear();
    thread.process();
    EXPECT_EQ(notes.take(), Lines{"pot 1 0.600000"}) << "the guard is open again";
}

TEST(FrontPanelProxyTest, ASignalWithoutSlotsDoesNothing) {
    LogRecorder log;
    FrontPanelSignals signals;
    const FrontPanelProxy panel(signals);
    panel.updatePot(Pot::VibratoSpeed, 0.5f);
    panel.updateOnOffSwitch(OnOffSwitch::NormalBright, true);
    panel.updateMultiPositionSwitch(MultiPositionSwitch::ProductId, 1);
    panel.pressButton(Button::FirmwareUpdate);
    EXPECT_EQ(log.lines(), Lines{"FrontPanelProxy: updateMultiPositionSwitch(1, 1)"});
}

TEST(ControlMessageReceiverThreadTest, LooksAtTheLinkEveryTenMilliseconds) {
    using namespace std::chrono_literals;
    PtyPair pty;
    LogRecorder log;
    HeldClock clock;
    FrontPanelSignals signals;
    tvk::comm::FrameBuilder builder;
    std::atomic<int> told{0};
    const nod::connection counted = signals.of(OnOffSwitch::Standby).connect([&](bool) { ++told; });
    {
        ControlMessageReceiver receiver(pty.path(), signals);
        receiver.start();
        clock.advanceInStep(1, 5ms);
        pty.deliver(builder.build("PC_10", 1));
        clock.advanceInStep(1, 4ms);
        EXPECT_EQ(told, 0);
        clock.advanceInStep(1, 1ms);
        EXPECT_EQ(told, 1);
        clock.release();
    }
    EXPECT_TRUE(log.has("TarvekThreadUsage: thread: ControlMsgRx"));
}

TEST(ControlMessageReceiverWithoutPortTest, IsAnErrorAndStaysSilent) {
    LogRecorder log;
    FrontPanelSignals signals;
    ControlMessageReceiver receiver(kNoPort, signals);
    receiver.pass();
    receiver.sender().sendBooting(0);
    EXPECT_EQ(log.lines(), Lines{"Error uart init"});
}

}  // namespace
