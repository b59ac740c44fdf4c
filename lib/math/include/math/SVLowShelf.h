// Shelf of gainDb at DC and 0 dB at the top, half of gainDb at freqHz; q of 0.707 is the steepest without a
// bump.
#pragma once

#include "math/TrapezoidalFilter.h"

class SVLowShelf : public TrapezoidalGainFilter {
public:
    SVLowShelf(float gainDb, float freqHz, float q, float sampleRate)
        : TrapezoidalGainFilter(trapezoidal::lowShelf, gainDb, freqHz, q, sampleRate) {}
};
