// Band-pass. Gain G = 10^(dB * 0.05) at freqHz, bandwidth freqHz / q between its -3 dB points.
#pragma once

#include "math/ParametricBiquad.h"

class BqBandPass : public ParametricBiquad<float> {
public:
    BqBandPass(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::bandPass, gainDb, freqHz, q, sampleRate) {}
};
