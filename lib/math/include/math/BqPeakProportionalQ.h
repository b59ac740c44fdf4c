// Bell whose bandwidth narrows as its gain, up or down, grows: q is scaled by k = sqrt(1 - 100^(-|dB| *
// 0.025)). Below 0.4 dB k stays at its value there, so that a flat setting divides by nothing near 0.
#pragma once

#include "math/ParametricBiquad.h"

class BqPeakProportionalQ : public ParametricBiquad<float> {
public:
    BqPeakProportionalQ(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::peakProportionalQ, gainDb, freqHz, q, sampleRate) {}
};
