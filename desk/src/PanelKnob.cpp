#include "desk/PanelKnob.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "desk/Refusal.h"
#include "proj/models/Model.h"

namespace tvk::desk {

namespace {

struct Pin {
    const char* name;
    void (Model::*turn)(float position);
    void (Model::*flip)(bool on);
};

constexpr std::array<Pin, 13> kPins = {{
    {"PA_0", &Model::setVibratoReverb, nullptr},
    {"PA_1", &Model::setVibratoBass, nullptr},
    {"PA_2", &Model::setVibratoMiddle, nullptr},
    {"PA_3", &Model::setVibratoTreble, nullptr},
    {"PA_4", &Model::setVibratoVolume, nullptr},
    {"PA_5", &Model::setNormalBass, nullptr},
    {"PA_6", &Model::setNormalMiddle, nullptr},
    {"PA_7", &Model::setNormalTreble, nullptr},
    {"PB_0", &Model::setNormalVolume, nullptr},
    {"PC_0", &Model::setVibratoIntensity, nullptr},
    {"PC_1", &Model::setVibratoSpeed, nullptr},
    {"PF_4", nullptr, &Model::setVibratoBrightSwitch},
    {"PF_5", nullptr, &Model::setNormalBrightSwitch},
}};

// Footswitches, cabinet switch, standby, product straps: what they mean is decided where the panel is read.
constexpr std::array<const char*, 4> kPanelOnly = {"PB_1", "PB2_AND_PB10", "PC_10", "PF0_AND_PF1"};

const Pin* findPin(const std::string& name) {
    const auto found =
        std::find_if(kPins.begin(), kPins.end(), [&](const Pin& pin) { return name == pin.name; });
    return found == kPins.end() ? nullptr : found;
}

float readNumber(const std::string& knob, const std::string& text) {
    float value = 0.0f;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        throw Refusal("--knob " + knob + ": '" + text + "' is not a number");
    return value;
}

}  // namespace

PanelKnobs demonstrationKnobs() {
    return {{"PA_0", 0.4f}, {"PA_1", 0.45f}, {"PA_2", 0.5f}, {"PA_3", 0.6f},  {"PA_4", 0.35f},
            {"PA_5", 0.4f}, {"PA_6", 0.5f},  {"PA_7", 0.6f}, {"PB_0", 0.35f}, {"PF_4", 0.0f},
            {"PC_0", 0.5f}, {"PC_1", 0.45f}, {"PF_5", 0.0f}};
}

std::string demonstrationCabinet() {
    return "/home/root/factoryIRs/Arvel-SlatePanel-IRs/Arvel-Near-Center";
}

void readKnob(const std::string& text, PanelKnobs& knobs) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) throw Refusal("--knob " + text + ": not of the form PIN=VALUE");
    const std::string name = text.substr(0, equals);
    const bool isPanelOnly =
        std::any_of(kPanelOnly.begin(), kPanelOnly.end(), [&](const char* pin) { return name == pin; });
    if (isPanelOnly) throw Refusal("--knob " + name + ": this pin needs a panel, which is not there yet");
    const Pin* const pin = findPin(name);
    if (!pin) throw Refusal("--knob " + name + ": no such pin");
    const float value = readNumber(name, text.substr(equals + 1));
    if (pin->turn && (value < 0.0f || value > 1.0f))
        throw Refusal("--knob " + text + ": a knob's value lies between 0 and 1");
    if (pin->flip && value != 0.0f && value != 1.0f)
        throw Refusal("--knob " + text + ": a switch's value is 0 or 1");
    knobs[name] = value;
}

void turnKnobs(const PanelKnobs& knobs, Model& model) {
    for (const auto& [name, value] : knobs) {
        const Pin& pin = *findPin(name);
        if (pin.turn)
            (model.*pin.turn)(value);
        else
            (model.*pin.flip)(value != 0.0f);
    }
}

}  // namespace tvk::desk
