#include "math/LfoSawtooth.h"

#include <algorithm>

LfoSawtooth::LfoSawtooth(float frequencyHz, float sampleRateHz) : CounterLfo(frequencyHz, sampleRateHz) {
    LfoSawtooth::design();
}

float LfoSawtooth::tick() {
    const double counter = counter_.next();
    const double shape =
        counter < risingCount_ ? -1.0 + counter * riseSlope_ : 1.0 + (risingCount_ - counter) * fallSlope_;
    return offset_ + static_cast<float>(shape) * amplitude_;
}

void LfoSawtooth::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoSawtooth::tick();
}

void LfoSawtooth::setSymmetry(float symmetry) {
    symmetry_ = std::clamp(symmetry, 0.0f, 1.0f);
    design();
}

// A slope that is never used, at either end of the symmetry, stays 0.
void LfoSawtooth::design() {
    risingCount_ = symmetry_ * counter_.period();
    const double fallingCount = counter_.period() - risingCount_;
    riseSlope_ = risingCount_ > 0.0 ? 2.0 / risingCount_ : 0.0;
    fallSlope_ = fallingCount > 0.0 ? 2.0 / fallingCount : 0.0;
}
