// A square locked to a sample counter: 1 while the counter is at or below half the period, -1 above. reset
// restarts a cycle on a tempo boundary. A change of frequency keeps the count.
#pragma once

#include "math/CounterPhase.h"
#include "math/Lfo.h"

class LfoSquareSync : public Lfo {
public:
    LfoSquareSync(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { counter_.setOffset(cycles); }
    void reset() override { counter_.reset(); }

private:
    CounterPhase counter_;
    double highCount_ = 0.5;
};
