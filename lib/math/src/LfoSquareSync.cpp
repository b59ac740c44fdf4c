#include "math/LfoSquareSync.h"

LfoSquareSync::LfoSquareSync(float frequencyHz, float sampleRateHz) : Lfo(frequencyHz, sampleRateHz) {
    LfoSquareSync::setFrequency(frequencyHz);
}

float LfoSquareSync::tick() {
    return offset_ + (counter_.next() <= highCount_ ? amplitude_ : -amplitude_);
}

void LfoSquareSync::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoSquareSync::tick();
}

void LfoSquareSync::setFrequency(float hz) {
    frequency_ = limited(hz, sampleRate_);
    counter_.setPeriodLocked(static_cast<double>(sampleRate_) / frequency_);
    highCount_ = 0.5 * counter_.period();
}
