// Bell of gainDb at freqHz, gain 1 far from it; a cut is the mirror image of the boost of the same q.
#pragma once

#include "math/ParametricBiquad.h"

class BqPeak : public ParametricBiquad<float> {
public:
    BqPeak(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::peak, gainDb, freqHz, q, sampleRate) {}
};

class BqPeakDouble : public ParametricBiquad<double> {
public:
    BqPeakDouble(double gainDb, double freqHz, double q, double sampleRate)
        : ParametricBiquad(biquad::peakDouble, gainDb, freqHz, q, sampleRate) {}
};
