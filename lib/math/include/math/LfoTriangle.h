// A triangle: -1 at the start of a cycle, 1 at its middle; phases count from its lowest point.
#pragma once

#include "math/CounterLfo.h"

class LfoTriangle : public CounterLfo {
public:
    LfoTriangle(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;

protected:
    // The next value of the shape.
    float nextShape() { return CounterPhase::triangle(counter_.next(), halfPeriod_); }

private:
    void design() override;

    double halfPeriod_ = 0.5;
};
