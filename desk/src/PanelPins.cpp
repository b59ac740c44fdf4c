#include "desk/PanelPins.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "desk/Refusal.h"

namespace tvk::desk {

namespace {

constexpr const char* kProductStraps = "PF0_AND_PF1";

struct Pin {
    const char* name;
    bool isWholeNumber;
    float demonstration;
};

constexpr std::array<Pin, 17> kPins = {{
    {"PA_0", false, 0.4f},         // vibrato channel: reverb
    {"PA_1", false, 0.45f},        // bass
    {"PA_2", false, 0.5f},         // middle
    {"PA_3", false, 0.6f},         // treble
    {"PA_4", false, 0.35f},        // volume
    {"PA_5", false, 0.4f},         // normal channel: bass
    {"PA_6", false, 0.5f},         // middle
    {"PA_7", false, 0.6f},         // treble
    {"PB_0", false, 0.35f},        // volume
    {"PB_1", false, 0.8f},         // reverb and vibrato both let through
    {"PB2_AND_PB10", true, 0.0f},  // cabinet switch
    {"PC_0", false, 0.5f},         // intensity
    {"PC_1", false, 0.45f},        // speed
    {"PC_10", true, 0.0f},         // standby
    {kProductStraps, true, 0.0f},
    {"PF_4", true, 0.0f},  // bright, vibrato channel
    {"PF_5", true, 0.0f},  // bright, normal channel
}};

const Pin* findPin(const std::string& name) {
    const auto* const found =
        std::find_if(kPins.begin(), kPins.end(), [&](const Pin& pin) { return name == pin.name; });
    return found == kPins.end() ? nullptr : found;
}

template <typename Number>
bool readNumber(const std::string& text, Number& number) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    return fault == std::errc() && end == text.data() + text.size();
}

}  // namespace

PanelPins demonstrationPins() {
    PanelPins pins;
    for (const Pin& pin : kPins)
        if (pin.name != kProductStraps) pins[pin.name] = pin.demonstration;
    return pins;
}

bool isWholeNumber(const std::string& pin) {
    const Pin* const found = findPin(pin);
    return found && found->isWholeNumber;
}

float readPinValue(const std::string& what, const std::string& pin, const std::string& text) {
    const Pin* const known = findPin(pin);
    if (!known) throw Refusal(what + ": no such pin; --help lists them");
    if (known->isWholeNumber) {
        std::int16_t number = 0;
        if (!readNumber(text, number))
            throw Refusal(what + ": '" + text + "' is not a whole number, as a switch has it");
        return number;
    }
    float position = 0.0f;
    if (!readNumber(text, position) || !std::isfinite(position))
        throw Refusal(what + ": '" + text + "' is not a number");
    if (position < 0.0f || position > 1.0f) throw Refusal(what + ": a knob's value lies between 0 and 1");
    return position;
}

void readKnob(const std::string& text, PanelPins& pins) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) throw Refusal("--knob " + text + ": not of the form PIN=VALUE");
    const std::string pin = text.substr(0, equals);
    if (pin == kProductStraps) throw Refusal("--knob " + text + ": say --product N for these straps");
    pins[pin] = readPinValue("--knob " + text, pin, text.substr(equals + 1));
}

}  // namespace tvk::desk
