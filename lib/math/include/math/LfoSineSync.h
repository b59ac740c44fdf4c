// A sine locked to a sample counter: the triangle at the counter, bent by the parabola. It starts a cycle at
// its lowest point, and reset restarts one on a tempo boundary. A change of frequency keeps the count.
#pragma once

#include "math/CounterLfo.h"

class LfoSineSync : public CounterLfo {
public:
    LfoSineSync(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;

private:
    void design() override;

    double halfPeriod_ = 0.5;
};
