#include "math/LfoSquareSync.h"

LfoSquareSync::LfoSquareSync(float frequencyHz, float sampleRateHz)
    : CounterLfo(frequencyHz, sampleRateHz, Keeps::Count) {
    LfoSquareSync::design();
}

float LfoSquareSync::tick() {
    return offset_ + (counter_.next() <= highCount_ ? amplitude_ : -amplitude_);
}

void LfoSquareSync::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoSquareSync::tick();
}

void LfoSquareSync::design() {
    highCount_ = 0.5 * counter_.period();
}
