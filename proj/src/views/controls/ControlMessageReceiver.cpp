#include "proj/views/controls/ControlMessageReceiver.h"

#include <algorithm>
#include <optional>

using tvk::comm::VariableType;

ControlMessageReceiver::ControlMessageReceiver(const std::string& uartDevice, FrontPanelSignals& signals)
    : uart_(uartDevice), sender_(uart_), frontPanel_(signals), thread_(*this) {
    using Self = ControlMessageReceiver;
    add("PA_0", VariableType::Float, &Self::messageHandler_CH2_REVERB);
    add("PA_1", VariableType::Float, &Self::messageHandler_CH2_BASS);
    add("PA_2", VariableType::Float, &Self::messageHandler_CH2_MIDDLE);
    add("PA_3", VariableType::Float, &Self::messageHandler_CH2_TREBLE);
    add("PA_4", VariableType::Float, &Self::messageHandler_CH2_VOLUME);
    add("PA_5", VariableType::Float, &Self::messageHandler_CH1_BASS);
    add("PA_6", VariableType::Float, &Self::messageHandler_CH1_MIDDLE);
    add("PA_7", VariableType::Float, &Self::messageHandler_CH1_TREBLE);
    add("PB_0", VariableType::Float, &Self::messageHandler_CH1_VOLUME);
    add("PB_1", VariableType::Float, &Self::messageHandler_FTSW_ADC);
    add("PB2_AND_PB10", VariableType::Int32, &Self::messageHandler_CAB);
    add("PC_0", VariableType::Float, &Self::messageHandler_CH2_INTENSITY);
    add("PC_1", VariableType::Float, &Self::messageHandler_CH2_SPEED);
    add("PC_10", VariableType::Int32, &Self::messageHandler_STBY_DETECT);
    add("PF0_AND_PF1", VariableType::Int32, &Self::messageHandler_PRODUCT_ID);
    add("PF_4", VariableType::Int32, &Self::messageHandler_CH2_BRIGHT);
    add("PF_5", VariableType::Int32, &Self::messageHandler_CH1_BRIGHT);
}

void ControlMessageReceiver::add(const char* name, VariableType type, Handler handler) {
    Record& record = records_.emplace(name, Record{type}).first->second;
    handlers_.emplace(name, handler);
    if (type == VariableType::Float)
        table_.bind(name, &record.floatValue);
    else
        table_.bind(name, &record.intValue);
}

void ControlMessageReceiver::pass() {
    pump();
    for (auto& [name, record] : records_)
        tellOf(name, record);
}

void ControlMessageReceiver::pump() {
    std::uint8_t byte = 0;
    for (int waiting = uart_.bytesWaiting(); waiting > 0 && uart_.readByte(byte); --waiting)
        if (frames_.receive(byte)) takeFrame();
}

void ControlMessageReceiver::takeFrame() {
    const std::optional<tvk::comm::VariableFrame> frame = tvk::comm::decodeFrame(frames_.content());
    if (!frame || !table_.store(*frame)) return;
    Sight& sight = records_.at(std::string(frame->name)).sight;
    if (sight == Sight::Unseen) sight = Sight::First;
}

void ControlMessageReceiver::tellOf(const std::string& name, Record& record) {
    if (record.sight == Sight::Unseen) return;
    const float position = std::clamp(record.floatValue, 0.0f, 1.0f);
    const bool isFloat = record.type == VariableType::Float;
    const bool hasChanged = isFloat ? position != record.lastFloat : record.intValue != record.lastInt;
    if (record.sight == Sight::Told && !hasChanged) return;
    record.sight = Sight::Told;
    const Handler handler = handlers_.at(name);
    if (isFloat) {
        (this->*handler)(position, static_cast<int>(position));
        record.lastFloat = position;
    } else {
        (this->*handler)(static_cast<float>(record.intValue), record.intValue);
        record.lastInt = record.intValue;
    }
}
