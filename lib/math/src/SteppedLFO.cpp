#include "math/SteppedLFO.h"

#include <algorithm>
#include <cmath>

SteppedLFO::SteppedLFO(float frequencyHz, float sampleRateHz)
    : LfoTriangle(frequencyHz, sampleRateHz), rounding_(ceilf) {}

float SteppedLFO::tick() {
    return offset_ + rounding_(nextShape() * halfStepCount_) / halfStepCount_ * amplitude_;
}

void SteppedLFO::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = SteppedLFO::tick();
}

void SteppedLFO::setSteps(int steps) {
    steps_ = std::max(steps, 2);
    const bool isEven = steps_ % 2 == 0;
    rounding_ = isEven ? ceilf : roundf;
    halfStepCount_ = static_cast<float>(isEven ? steps_ : steps_ - 1) * 0.5f;
}
