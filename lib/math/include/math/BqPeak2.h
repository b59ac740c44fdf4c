// Bell of gain G = 10^(dB * 0.05) at freqHz whose poles do not depend on the gain: turning the gain moves the
// zeros only. A cut is therefore not the mirror image of the boost.
#pragma once

#include "math/ParametricBiquad.h"

class BqPeak2 : public ParametricBiquad<float> {
public:
    BqPeak2(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::peak2, gainDb, freqHz, q, sampleRate) {}
};

class BqPeak2Double : public ParametricBiquad<double> {
public:
    BqPeak2Double(double gainDb, double freqHz, double q, double sampleRate)
        : ParametricBiquad(biquad::peak2Double, gainDb, freqHz, q, sampleRate) {}
};
