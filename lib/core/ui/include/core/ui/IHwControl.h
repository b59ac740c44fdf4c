// The panel side of a control: what hardware can do to it. Control threads only.
#pragma once

#include <string>

class IHwControl {
public:
    virtual ~IHwControl() = default;

    virtual void setFromBool(bool on) = 0;
    // 0 to 1; limited to that, and 0 for not-a-number.
    virtual void setFromPosition(float position) = 0;
    // The parameter's value as text.
    virtual void setFromString(const std::string& value) = 0;
    // Steps of an incremental encoder, positive clockwise; the ends of the range hold.
    virtual void setFromEncoder(int ticks) = 0;
};
