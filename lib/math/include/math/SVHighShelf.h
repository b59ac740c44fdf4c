// Shelf of gainDb at the top and 0 dB at DC, half of gainDb at freqHz; q of 0.707 is the steepest without a
// bump.
#pragma once

#include "math/TrapezoidalFilter.h"

class SVHighShelf : public TrapezoidalGainFilter {
public:
    SVHighShelf(float gainDb, float freqHz, float q, float sampleRate)
        : TrapezoidalGainFilter(trapezoidal::highShelf, gainDb, freqHz, q, sampleRate) {}
};
