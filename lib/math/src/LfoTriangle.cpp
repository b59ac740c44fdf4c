#include "math/LfoTriangle.h"

LfoTriangle::LfoTriangle(float frequencyHz, float sampleRateHz) : CounterLfo(frequencyHz, sampleRateHz) {
    LfoTriangle::design();
}

float LfoTriangle::tick() {
    return offset_ + nextShape() * amplitude_;
}

void LfoTriangle::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoTriangle::tick();
}

void LfoTriangle::design() {
    halfPeriod_ = 0.5 * counter_.period();
}
