// A control of a unit with what a display shows of it. Control threads only.
#pragma once

#include <string>

#include "core/ui/IHwControl.h"
#include "core/ui/IObserverStdDisplay.h"

class IParameter;

class IHwControlStdDisplay : public IHwControl, public IObserverStdDisplay {
public:
    // Makes the control set the parameter and follow it; throws std::runtime_error if the types differ.
    virtual void attach(IParameter& parameter) = 0;
    virtual void detach(IParameter& parameter) = 0;

    // The name of the parameter that the control drives.
    virtual const std::string& getControlId() const = 0;
    virtual const std::string& getDisplayName() const = 0;
    virtual const std::string& getDisplayType() const = 0;
    virtual const std::string& getUnits() const = 0;
    virtual const std::string& getNameMinimized() const = 0;
    virtual const std::string& getNameMaximized() const = 0;

    // Where the knob stands, 0 to 1.
    virtual float getPosition() const = 0;
    // The value as it is shown, and on a small display.
    virtual std::string getDisplayText() const = 0;
    virtual std::string getDisplayTextMinimized() const = 0;
};
