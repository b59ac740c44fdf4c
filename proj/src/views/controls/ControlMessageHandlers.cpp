// What each variable of the control processor stands for on the front panel.
#include <array>

#include "proj/views/controls/ControlMessageReceiver.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "ControlMessageReceiver";

// Both footswitches lie on one analogue input: each combination has its range of voltages.
struct FootswitchRange {
    float above;  // the range begins above this value
    bool reverb;
    bool vibrato;
};
constexpr std::array<FootswitchRange, 4> kFootswitchRanges = {
    {{0.67f, true, true}, {0.39f, false, true}, {0.105f, true, false}, {-1.0f, false, false}}};

// Position of the cabinet switch by the code of its two pins.
constexpr std::array<int, 3> kCabinetPositions = {0, 1, 2};

int footswitchCode(float value) {
    int code = 0;
    for (; code < 3; ++code)
        if (value > kFootswitchRanges[static_cast<std::size_t>(code)].above) break;
    return code;
}

void logPosition(const char* name, float value) {
    tvk::log::debug(kTag, "%s(%f)", name, static_cast<double>(value));
}

void logNumber(const char* name, int value) {
    tvk::log::debug(kTag, "%s(%d)", name, value);
}

}  // namespace

void ControlMessageReceiver::turnPot(const char* name, Pot pot, float position) const {
    logPosition(name, position);
    frontPanel_.updatePot(pot, position);
}

void ControlMessageReceiver::moveSwitch(const char* name, OnOffSwitch onOff, int value) const {
    logNumber(name, value);
    frontPanel_.updateOnOffSwitch(onOff, value != 0);
}

void ControlMessageReceiver::messageHandler_CH2_REVERB(float value, int) {
    turnPot("messageHandler_CH2_REVERB", Pot::VibratoReverb, value);
}

void ControlMessageReceiver::messageHandler_CH2_BASS(float value, int) {
    turnPot("messageHandler_CH2_BASS", Pot::VibratoBass, value);
}

void ControlMessageReceiver::messageHandler_CH2_MIDDLE(float value, int) {
    turnPot("messageHandler_CH2_MIDDLE", Pot::VibratoMiddle, value);
}

void ControlMessageReceiver::messageHandler_CH2_TREBLE(float value, int) {
    turnPot("messageHandler_CH2_TREBLE", Pot::VibratoTreble, value);
}

void ControlMessageReceiver::messageHandler_CH2_VOLUME(float value, int) {
    turnPot("messageHandler_CH2_VOLUME", Pot::VibratoVolume, value);
}

void ControlMessageReceiver::messageHandler_CH1_BASS(float value, int) {
    turnPot("messageHandler_CH1_BASS", Pot::NormalBass, value);
}

void ControlMessageReceiver::messageHandler_CH1_MIDDLE(float value, int) {
    turnPot("messageHandler_CH1_MIDDLE", Pot::NormalMiddle, value);
}

void ControlMessageReceiver::messageHandler_CH1_TREBLE(float value, int) {
    turnPot("messageHandler_CH1_TREBLE", Pot::NormalTreble, value);
}

void ControlMessageReceiver::messageHandler_CH1_VOLUME(float value, int) {
    turnPot("messageHandler_CH1_VOLUME", Pot::NormalVolume, value);
}

void ControlMessageReceiver::messageHandler_CH2_INTENSITY(float value, int) {
    turnPot("messageHandler_CH2_INTENSITY", Pot::VibratoIntensity, value);
}

void ControlMessageReceiver::messageHandler_CH2_SPEED(float value, int) {
    turnPot("messageHandler_CH2_SPEED", Pot::VibratoSpeed, value);
}

void ControlMessageReceiver::messageHandler_STBY_DETECT(float, int truncated) {
    moveSwitch("messageHandler_STBY_DETECT", OnOffSwitch::Standby, truncated);
}

void ControlMessageReceiver::messageHandler_CH2_BRIGHT(float, int truncated) {
    moveSwitch("messageHandler_CH2_BRIGHT", OnOffSwitch::VibratoBright, truncated);
}

void ControlMessageReceiver::messageHandler_CH1_BRIGHT(float, int truncated) {
    moveSwitch("messageHandler_CH1_BRIGHT", OnOffSwitch::NormalBright, truncated);
}

void ControlMessageReceiver::messageHandler_FTSW_ADC(float value, int) {
    logPosition("messageHandler_FTSW_ADC", value);
    const int code = footswitchCode(value);
    if (code == footswitchCode_) return;
    footswitchCode_ = code;
    const FootswitchRange& switches = kFootswitchRanges[static_cast<std::size_t>(code)];
    frontPanel_.updateOnOffSwitch(OnOffSwitch::FootswitchReverb, switches.reverb);
    frontPanel_.updateOnOffSwitch(OnOffSwitch::FootswitchVibrato, switches.vibrato);
}

void ControlMessageReceiver::messageHandler_CAB(float, int truncated) {
    logNumber("messageHandler_CAB", truncated);
    if (truncated < 0 || truncated >= static_cast<int>(kCabinetPositions.size())) {
        TVK_WARN("invalid cabsim switch position, %d", truncated);
        return;
    }
    frontPanel_.updateMultiPositionSwitch(MultiPositionSwitch::Cabsim,
                                          kCabinetPositions[static_cast<std::size_t>(truncated)]);
}

void ControlMessageReceiver::messageHandler_PRODUCT_ID(float, int truncated) {
    logNumber("messageHandler_PRODUCT_ID", truncated);
    frontPanel_.updateMultiPositionSwitch(MultiPositionSwitch::ProductId, truncated);
}
