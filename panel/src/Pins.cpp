#include "panel/Pins.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "panel/Failures.h"
#include "utility/Exception.h"

namespace tvk::panel {

namespace {

constexpr std::array<Pin, 17> kPins = {{
    {"PA_0", kFloat, 0, 1, 0.4, true, "vibrato channel, reverb"},
    {"PA_1", kFloat, 0, 1, 0.45, true, "vibrato channel, bass"},
    {"PA_2", kFloat, 0, 1, 0.5, false, "vibrato channel, middle (product 0 only)"},
    {"PA_3", kFloat, 0, 1, 0.6, true, "vibrato channel, treble"},
    {"PA_4", kFloat, 0, 1, 0.35, true, "vibrato channel, volume"},
    {"PA_5", kFloat, 0, 1, 0.4, true, "normal channel, bass"},
    {"PA_6", kFloat, 0, 1, 0.5, false, "normal channel, middle (product 0 only)"},
    {"PA_7", kFloat, 0, 1, 0.6, true, "normal channel, treble"},
    {kCabinetPin, kInt32, 0, 2, 0, true, "cabinet switch, position 0 to 2"},
    {"PB_0", kFloat, 0, 1, 0.35, true, "normal channel, volume"},
    {"PB_1", kFloat, 0, 1, 0.8, true, "the two footswitches"},
    {"PC_0", kFloat, 0, 1, 0.5, true, "vibrato intensity"},
    {"PC_1", kFloat, 0, 1, 0.45, true, "vibrato speed"},
    {"PC_10", kInt32, 0, 1, 0, true, "standby, 0 or 1"},
    {kProductPin, kInt32, 0, 3, 0, true, "product straps, 0 to 3"},
    {"PF_4", kInt32, 0, 1, 0, false, "vibrato channel, bright (product 0 only)"},
    {"PF_5", kInt32, 0, 1, 0, false, "normal channel, bright (product 0 only)"},
}};

template <typename Number>
bool readNumber(const std::string& text, Number& number) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    return fault == std::errc() && end == text.data() + text.size();
}

}  // namespace

const std::array<Pin, 17>& pins() {
    return kPins;
}

const Pin* findPin(const std::string& name) {
    const auto* const found =
        std::find_if(kPins.begin(), kPins.end(), [&](const Pin& pin) { return name == pin.name; });
    return found == kPins.end() ? nullptr : found;
}

PinFrames demonstrationPins(std::int32_t product) {
    PinFrames frames;
    for (const Pin& pin : kPins)
        frames.emplace(pin.name, pin.type == kFloat
                                     ? floatFrame(pin.name, static_cast<float>(pin.demonstration))
                                     : intFrame(pin.name, static_cast<std::int32_t>(pin.demonstration)));
    frames.at(kProductPin) = intFrame(kProductPin, product);
    return frames;
}

Frame readPin(const std::string& where, const std::string& name, const std::string& text) {
    const Pin* const pin = findPin(name);
    if (!pin) throw Refusal(where + ": there is no pin " + name + "; --help lists them");
    if (pin->type == kInt32) {
        std::int32_t value = 0;
        if (!readNumber(text, value))
            throw Refusal(where + ": " + name + " takes a whole number, not '" + text + "'");
        return intFrame(name, value);
    }
    float value = 0.0f;
    if (!readNumber(text, value) || !std::isfinite(value))
        throw Refusal(where + ": " + name + " takes a number, not '" + text + "'");
    if (value < 0.0f || value > 1.0f)
        throw Refusal(where + ": " + name + " takes a number from 0 to 1, not " + text);
    return floatFrame(name, value);
}

Frame readSetting(const std::string& where, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos)
        throw Refusal(where + ": '" + setting + "' is not of the form PIN=VALUE, such as PA_4=0.5");
    return readPin(where, setting.substr(0, equals), setting.substr(equals + 1));
}

PinFrames readKnobs(std::int32_t product, const std::vector<std::string>& knobs) {
    PinFrames pins = demonstrationPins(product);
    for (const std::string& knob : knobs) {
        const Frame frame = readSetting("--knob", knob);
        if (frame.name == kProductPin)
            throw Refusal("--knob " + knob + ": these straps are what --product says");
        pins.at(frame.name) = frame;
    }
    return pins;
}

std::string faultOfPin(const Pin& pin, const Frame& frame) {
    if (frame.type != pin.type)
        return formatText("came as type %d (%s); it is type %d (%s), and the amplifier drops any other",
                          frame.type, typeName(frame.type).c_str(), pin.type, typeName(pin.type).c_str());
    const double value = *numberOf(frame);
    if (value < pin.least || value > pin.most)
        return formatText("is %s; it goes from %g to %g", valueText(frame).c_str(), pin.least, pin.most);
    return {};
}

}  // namespace tvk::panel
