// Low-pass of 12 dB an octave. Gain G = 10^(dB * 0.05) at DC; G q at freqHz.
#pragma once

#include "math/ParametricBiquad.h"

class BqLpf : public ParametricBiquad<float> {
public:
    BqLpf(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::lowPass, gainDb, freqHz, q, sampleRate) {}
};
