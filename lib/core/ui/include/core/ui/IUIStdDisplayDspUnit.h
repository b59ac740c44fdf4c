// A unit as a list of knobs that a panel can set, step and read. Control threads only.
//
// An index out of range is a log line and no more; what is asked of such a knob is 0 or an empty text.
#pragma once

#include <string>

class IUIStdDisplayDspUnit {
public:
    virtual ~IUIStdDisplayDspUnit() = default;

    // A table of the knobs on standard output.
    virtual void printStatus() const = 0;
    // Position of a knob, 0 to 1.
    virtual void setKnob(int index, float position) = 0;
    // Value of a knob as text, in the parameter's own units.
    virtual void setKnob(int index, const std::string& value) = 0;
    virtual void incrementKnob(int index, int ticks) = 0;
    virtual int getNumKnobs() const = 0;
    // Position, 0 to 1.
    virtual float getKnob(int index) const = 0;
    virtual std::string getParameterName(int index) const = 0;
    virtual std::string getParameterNameMinimized(int index) const = 0;
    virtual std::string getParameterUnits(int index) const = 0;
    // The value as a display shows it.
    virtual std::string getParameterValue(int index) const = 0;
    // Whether the unit has a bypass, by its definition.
    virtual bool hasBypass() const = 0;
};
