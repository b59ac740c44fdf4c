// A square locked to a sample counter: 1 while the counter is at or below half the period, -1 above. reset
// restarts a cycle on a tempo boundary. A change of frequency keeps the count.
#pragma once

#include "math/CounterLfo.h"

class LfoSquareSync : public CounterLfo {
public:
    LfoSquareSync(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;

private:
    void design() override;

    double highCount_ = 0.5;
};
