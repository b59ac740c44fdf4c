#include "math/LfoAbsSine.h"

#include <cmath>

#include "math/ParabolicSine.h"

LfoAbsSine::LfoAbsSine(float frequencyHz, float sampleRateHz) : Lfo(frequencyHz, sampleRateHz) {
    phase_.setFrequency(frequency_, sampleRate_);
}

float LfoAbsSine::tick() {
    return offset_ + std::fabs(parabolicSine(SinePhase::radians(phase_.next()))) * amplitude_;
}

void LfoAbsSine::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoAbsSine::tick();
}

void LfoAbsSine::setFrequency(float hz) {
    frequency_ = limited(hz, sampleRate_);
    phase_.setFrequency(frequency_, sampleRate_);
}
