#include "math/LfoTriangle.h"

LfoTriangle::LfoTriangle(float frequencyHz, float sampleRateHz) : Lfo(frequencyHz, sampleRateHz) {
    LfoTriangle::setFrequency(frequencyHz);
}

float LfoTriangle::tick() {
    return offset_ + nextShape() * amplitude_;
}

void LfoTriangle::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoTriangle::tick();
}

void LfoTriangle::setFrequency(float hz) {
    frequency_ = limited(hz, sampleRate_);
    counter_.setPeriod(static_cast<double>(sampleRate_) / frequency_);
    halfPeriod_ = 0.5 * counter_.period();
}
