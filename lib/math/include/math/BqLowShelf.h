// Shelf of gainDb at DC and 0 dB at the top, half of gainDb at freqHz. The slope is S = q / 4; S at or below
// 1 gives a monotone step.
#pragma once

#include "math/ParametricBiquad.h"

class BqLowShelf : public ParametricBiquad<float> {
public:
    BqLowShelf(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::lowShelf, gainDb, freqHz, q, sampleRate) {}
};

class BqLowShelfDouble : public ParametricBiquad<double> {
public:
    BqLowShelfDouble(double gainDb, double freqHz, double q, double sampleRate)
        : ParametricBiquad(biquad::lowShelfDouble, gainDb, freqHz, q, sampleRate) {}
};
