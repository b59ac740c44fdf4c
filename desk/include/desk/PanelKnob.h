// The panel's controls by their pin names, as far as they can be turned without a panel.
#pragma once

#include <map>
#include <string>

class Model;

namespace tvk::desk {

// Pin name to value: knobs 0 to 1, switches 0 or 1.
using PanelKnobs = std::map<std::string, float>;

// A setting at which the demonstration guitar sounds well: the built-in presets come up with their volumes at
// 0.
PanelKnobs demonstrationKnobs();

// The cabinet that goes with it.
std::string demonstrationCabinet();

// Reads "PIN=VALUE" into the knobs, in place of an earlier value. Throws Refusal for an unknown pin, one that
// only a panel can serve (PB_1, PB2_AND_PB10, PC_10, PF0_AND_PF1), or a value outside the pin's range.
void readKnob(const std::string& text, PanelKnobs& knobs);

// Puts every knob through the model's forwarders, in the pins' order.
void turnKnobs(const PanelKnobs& knobs, Model& model);

}  // namespace tvk::desk
