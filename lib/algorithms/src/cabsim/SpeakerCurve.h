// The impedance curve of one speaker: its resonance and three corrections as peaks, and a shelf for the voice
// coil's inductance.
//
//   in -> peak 1 (the resonance) -> peak 2 -> peak 3 -> peak 4 -> high shelf -> trim -> out
#pragma once

#include <array>

#include "BiquadChain.h"
#include "algorithms/cabsim/SICQNSBase.h"

struct SpeakerCurveValues {
    struct Peak {
        float gainDb;
        float hz;
        float q;
    };
    struct Shelf {
        float gainDb;
        float hz;
        float slope;
    };
    std::array<Peak, 4> peaks;
    Shelf shelf;
    float trimDb;
};

class SpeakerCurve final : public SICQNSBase {
public:
    // blockLength: samples per call, at sampleRate (Hz).
    SpeakerCurve(const SpeakerCurveValues& values, int blockLength, float sampleRate);

    void process(const float* in, float* out) override;

private:
    const int blockLength_;
    BiquadChain chain_;
};
