// A sine locked to a sample counter: the triangle at the counter, bent by the parabola. It starts a cycle at
// its lowest point, and reset restarts one on a tempo boundary. A change of frequency keeps the count.
#pragma once

#include "math/CounterPhase.h"
#include "math/Lfo.h"

class LfoSineSync : public Lfo {
public:
    LfoSineSync(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { counter_.setOffset(cycles); }
    void reset() override { counter_.reset(); }

private:
    CounterPhase counter_;
    double halfPeriod_ = 0.5;
};
