// A triangle in steps.
//
//   shape = rounding(k triangle) / k
//   n even: k = n / 2, rounded up          n odd: k = (n - 1) / 2, rounded to the nearest
#pragma once

#include "math/LfoTriangle.h"

class SteppedLFO : public LfoTriangle {
public:
    // Starts with 2 steps.
    SteppedLFO(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    // Fewer than 2 are 2.
    void setSteps(int steps);
    int steps() const { return steps_; }

private:
    using Rounding = float (*)(float);

    int steps_ = 2;
    Rounding rounding_;
    float halfStepCount_ = 1.0f;
};
