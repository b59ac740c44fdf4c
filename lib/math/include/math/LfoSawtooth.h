// A saw that rises from -1 to 1 over a share of the period and falls back over the rest.
//
//   below risingCount     -1 + counter * riseSlope            riseSlope = 2 / risingCount
//   at or after it         1 + (risingCount - counter) * fallSlope,   fallSlope = 2 / (period - risingCount)
//
// risingCount = symmetry * period: 0 only falls, 1 only rises, 0.5 is a triangle.
#pragma once

#include "math/CounterLfo.h"

class LfoSawtooth : public CounterLfo {
public:
    // Starts as the triangle.
    LfoSawtooth(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    // 0 to 1, limited to that.
    void setSymmetry(float symmetry);

private:
    void design() override;

    float symmetry_ = 0.5f;
    double risingCount_ = 0.0;
    double riseSlope_ = 0.0;
    double fallSlope_ = 0.0;
};
