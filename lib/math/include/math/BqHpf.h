// High-pass of 12 dB an octave. Gain G = 10^(dB * 0.05) far above freqHz; G q at freqHz.
#pragma once

#include "math/ParametricBiquad.h"

class BqHpf : public ParametricBiquad<float> {
public:
    BqHpf(float gainDb, float freqHz, float q, float sampleRate)
        : ParametricBiquad(biquad::highPass, gainDb, freqHz, q, sampleRate) {}
};
