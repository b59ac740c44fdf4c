// The controls of the panel, by the pins of the control processor that reads them.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "panel/Frame.h"

namespace tvk::panel {

struct Pin {
    const char* name;
    int type;  // kFloat or kInt32
    double least;
    double most;
    double demonstration;  // where it stands unless told otherwise
    bool isOnEveryProduct;
    const char* meaning;
};

// By name.
const std::array<Pin, 17>& pins();

// Null for an unknown name.
const Pin* findPin(const std::string& name);

inline constexpr const char* kProductPin = "PF0_AND_PF1";
inline constexpr const char* kCabinetPin = "PB2_AND_PB10";

// The pins with a frame each.
using PinFrames = std::map<std::string, Frame>;

// All pins as for the demonstration, and that product.
PinFrames demonstrationPins(std::int32_t product);

// Reads a value of the command line or a script; where: names its place in the message. Floats lie between 0
// and 1, integers are any of 32 bits, as an amplifier has to bear them. Throws Refusal for an unknown pin
// too.
Frame readPin(const std::string& where, const std::string& name, const std::string& text);

// Reads "PIN=VALUE".
Frame readSetting(const std::string& where, const std::string& setting);

// The pins of the demonstration and that product, with the settings of the option --knob in their places.
// Throws Refusal likewise, and for the product straps.
PinFrames readKnobs(std::int32_t product, const std::vector<std::string>& knobs);

// What is wrong with a frame of the panel: its type, its range; empty for nothing.
std::string faultOfPin(const Pin& pin, const Frame& frame);

}  // namespace tvk::panel
