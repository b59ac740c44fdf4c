// The receiving end of the serial link: it keeps the last value of every panel variable and turns each change
// into the signal of its control.
//
// A variable is unseen until its first frame, which is always a change. Floats are positions and limited to
// 0 to 1. Frames with a fault are dropped without a word (core/comm/VariableFrame.h).
//
// Threads: pass on one thread alone, which is ControlMsgRx once start has been called; the signals are
// emitted there.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "core/comm/FrameReceiver.h"
#include "core/comm/UartComm.h"
#include "core/comm/VariableTable.h"
#include "proj/views/controls/ControlMessageReceiverThread.h"
#include "proj/views/controls/ControlMessageSender.h"
#include "proj/views/controls/FrontPanelProxy.h"

class ControlMessageReceiver {
public:
    // Opens the port; without one nothing is ever received. The signals outlive the receiver.
    ControlMessageReceiver(const std::string& uartDevice, FrontPanelSignals& signals);
    ControlMessageReceiver(const ControlMessageReceiver&) = delete;
    ControlMessageReceiver& operator=(const ControlMessageReceiver&) = delete;

    // Starts the thread.
    void start() { thread_.start(); }

    // Takes in the bytes that wait, then tells of every variable that has changed, in the order of the names.
    void pass();

    ControlMessageSender& sender() { return sender_; }

private:
    enum class Sight { Unseen, First, Told };

    struct Record {
        tvk::comm::VariableType type;
        float floatValue = -1.0f;
        float lastFloat = -1.0f;
        std::int32_t intValue = -1;
        std::int32_t lastInt = -1;
        Sight sight = Sight::Unseen;
    };

    // value: the number; truncated: its whole part.
    using Handler = void (ControlMessageReceiver::*)(float value, int truncated);

    void add(const char* name, tvk::comm::VariableType type, Handler handler);
    void pump();
    void takeFrame();
    void tellOf(const std::string& name, Record& record);

    void turnPot(const char* name, Pot pot, float position) const;
    void moveSwitch(const char* name, OnOffSwitch onOff, int value) const;

    void messageHandler_CH2_REVERB(float value, int truncated);
    void messageHandler_CH2_BASS(float value, int truncated);
    void messageHandler_CH2_MIDDLE(float value, int truncated);
    void messageHandler_CH2_TREBLE(float value, int truncated);
    void messageHandler_CH2_VOLUME(float value, int truncated);
    void messageHandler_CH1_BASS(float value, int truncated);
    void messageHandler_CH1_MIDDLE(float value, int truncated);
    void messageHandler_CH1_TREBLE(float value, int truncated);
    void messageHandler_CH1_VOLUME(float value, int truncated);
    void messageHandler_FTSW_ADC(float value, int truncated);
    void messageHandler_CAB(float value, int truncated);
    void messageHandler_CH2_INTENSITY(float value, int truncated);
    void messageHandler_CH2_SPEED(float value, int truncated);
    void messageHandler_STBY_DETECT(float value, int truncated);
    void messageHandler_PRODUCT_ID(float value, int truncated);
    void messageHandler_CH2_BRIGHT(float value, int truncated);
    void messageHandler_CH1_BRIGHT(float value, int truncated);

    UartComm uart_;
    ControlMessageSender sender_;
    FrontPanelProxy frontPanel_;
    tvk::comm::FrameReceiver frames_;
    tvk::comm::VariableTable table_;
    std::map<std::string, Record> records_;
    std::map<std::string, Handler> handlers_;
    int footswitchCode_ = -1;  // unknown until the first value
    ControlMessageReceiverThread thread_;
};
