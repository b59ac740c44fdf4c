// A triangle: -1 at the start of a cycle, 1 at its middle.
#pragma once

#include "math/CounterPhase.h"
#include "math/Lfo.h"

class LfoTriangle : public Lfo {
public:
    LfoTriangle(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    // Counted from the triangle's lowest point.
    void setPhase(float cycles) override { counter_.setOffset(cycles); }
    void reset() override { counter_.reset(); }

protected:
    // The next value of the shape.
    float nextShape() { return CounterPhase::triangle(counter_.next(), halfPeriod_); }

private:
    CounterPhase counter_;
    double halfPeriod_ = 0.5;
};
