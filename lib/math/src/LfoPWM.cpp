#include "math/LfoPWM.h"

#include <algorithm>

LfoPWM::LfoPWM(float frequencyHz, float sampleRateHz) : CounterLfo(frequencyHz, sampleRateHz) {
    LfoPWM::design();
}

float LfoPWM::tick() {
    return offset_ + (counter_.next() <= highCount_ ? amplitude_ : -amplitude_);
}

void LfoPWM::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoPWM::tick();
}

void LfoPWM::design() {
    highCount_ = duty_ * counter_.period();
}

void LfoPWM::setDuty(float duty) {
    duty_ = std::clamp(duty, 0.0f, 1.0f);
    design();
}
