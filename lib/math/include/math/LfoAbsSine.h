// The absolute value of a sine: shape from 0 to 1, two humps a cycle.
#pragma once

#include "math/Lfo.h"
#include "math/SinePhase.h"

class LfoAbsSine : public Lfo {
public:
    LfoAbsSine(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { phase_.setOffset(cycles); }
    // To the phase offset.
    void reset() override { phase_.reset(); }

private:
    SinePhase phase_;
};
