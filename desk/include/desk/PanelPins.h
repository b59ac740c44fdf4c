// The panel's controls by the pins of the control processor that reads them.
#pragma once

#include <map>
#include <string>

namespace tvk::desk {

// Pin name to value: knobs and the footswitches' voltage 0 to 1, all else a whole number.
using PanelPins = std::map<std::string, float>;

// A setting at which the demonstration guitar sounds well: a preset comes up with its volumes at 0. Every pin
// is in it but the product straps.
PanelPins demonstrationPins();

// Whether a pin carries a whole number: switches, straps and detectors.
bool isWholeNumber(const std::string& pin);

// Reads what a pin is to carry. what: names it in the message. Throws Refusal for an unknown pin or a value
// that it cannot have.
float readPinValue(const std::string& what, const std::string& pin, const std::string& text);

// Reads "PIN=VALUE" into the pins, in place of an earlier value. Throws Refusal likewise, and for the product
// straps, which have an option of their own.
void readKnob(const std::string& text, PanelPins& pins);

}  // namespace tvk::desk
