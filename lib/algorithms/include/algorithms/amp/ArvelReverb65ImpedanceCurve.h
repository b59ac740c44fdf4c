// What the load of a real speaker does to a valve output: a resonance at the low end and a rise towards the
// top. Fixed for this amp: no setter reaches it.
//
//   20 Hz high-pass -> 6.9 dB at 74.5 Hz, q 1.5 -> 0.5 dB at 225 Hz, q 1.75 -> -0.9 dB at 500 Hz, q 0.7
//     -> -0.25 dB at 6 kHz, q 1 -> 7 dB high shelf at 850 Hz, slope value 0.7 -> trim of -1 dB
//
// The high-pass is the two-integrator filter h = x - l - damping bp; bp += f h; l += f bp; y = h with
// f = 2 sin(pi 20 / fs), damping 1 / 0.71 (Chamberlin: Musical Applications of Microprocessors, 1980).
//
// All sections are linear and run side by side in one loop, so that their recursions overlap. Audio thread.
#pragma once

#include "math/Biquad.h"
#include "math/BiquadDesign.h"

class ArvelReverb65ImpedanceCurve {
public:
    // length: samples per call, at sampleRate (Hz).
    ArvelReverb65ImpedanceCurve(int length, float sampleRate);

    // length samples in place.
    void process(float* buffer);

    static constexpr int kSections = 5;  // four peaks and the shelf, in the order of the chain

    struct Coefficients {
        float f;
        float damping;
        float gain;
        BiquadCoefficients<float> sections[kSections];
    };
    struct State {
        float low = 0.0f;
        float band = 0.0f;
        BiquadState<float> sections[kSections];
    };

private:
    const int length_;
    const Coefficients coefficients_;
    State state_;
};
