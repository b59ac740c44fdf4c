// Shelf of gainDb at the top and 0 dB at DC, half of gainDb at freqHz. The slope is S = q / 4; S at or below
// 1 gives a monotone step.
#pragma once

#include "math/ParametricBiquad.h"

class BqHighShelf : public ParametricBiquad<float> {
public:
    BqHighShelf(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::highShelf, gainDb, freqHz, q, sampleRate) {}
};
