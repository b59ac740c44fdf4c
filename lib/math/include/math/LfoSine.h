// A sine by the parabola of ParabolicSine.h: no table, no sinf. The phase starts at 0, rising.
#pragma once

#include "math/Lfo.h"
#include "math/SinePhase.h"

class LfoSine : public Lfo {
public:
    LfoSine(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { phase_.setOffset(cycles); }
    // To the phase offset.
    void reset() override { phase_.reset(); }

    // The same as setPhase(offsets[n]) before each of count ticks. out may be offsets.
    void tickModulated(const float* offsets, float* out, int count);

protected:
    SinePhase phase_;
};
