// High-pass of 12 dB an octave, gain 1 at the top and q at freqHz. The gain argument is not used.
#pragma once

#include "math/TrapezoidalFilter.h"

class SVHpf : public TrapezoidalFilter {
public:
    SVHpf(float /*gainDb*/, float freqHz, float q, float sampleRate)
        : TrapezoidalFilter(trapezoidal::highPass, 0.0f, freqHz, q, sampleRate) {}
};
