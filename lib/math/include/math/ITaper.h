// The law of a potentiometer: knob position 0 to 1 to value 0 to 1, rising, 0 at 0 and 1 at 1.
#pragma once

class ITaper {
public:
    virtual float calc(float x) const = 0;
    virtual float inverse(float y) const = 0;
    virtual ~ITaper() = default;
};
