// Low-pass of 12 dB an octave, gain 1 at DC and q at freqHz. The gain argument is not used.
#pragma once

#include "math/TrapezoidalFilter.h"

class SVLpf : public TrapezoidalFilter {
public:
    SVLpf(float /*gainDb*/, float freqHz, float q, float sampleRate)
        : TrapezoidalFilter(trapezoidal::lowPass, 0.0f, freqHz, q, sampleRate) {}
};
