#include "math/LfoSineSync.h"

#include "math/ParabolicSine.h"

LfoSineSync::LfoSineSync(float frequencyHz, float sampleRateHz)
    : CounterLfo(frequencyHz, sampleRateHz, Keeps::Count) {
    LfoSineSync::design();
}

float LfoSineSync::tick() {
    constexpr float kQuarterCycle = 1.5707964f;
    const float triangle = CounterPhase::triangle(counter_.next(), halfPeriod_);
    return offset_ + parabolicSine(kQuarterCycle * triangle) * amplitude_;
}

void LfoSineSync::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoSineSync::tick();
}

void LfoSineSync::design() {
    halfPeriod_ = 0.5 * counter_.period();
}
