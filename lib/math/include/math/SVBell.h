// Bell of gainDb at freqHz; a cut is the mirror image of the boost of the same q, and 0 dB is a wire.
#pragma once

#include "math/TrapezoidalFilter.h"

class SVBell : public TrapezoidalGainFilter {
public:
    SVBell(float gainDb, float freqHz, float q, float sampleRate)
        : TrapezoidalGainFilter(trapezoidal::bell, gainDb, freqHz, q, sampleRate) {}
};
