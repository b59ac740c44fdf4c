// Tone control of three gains and two corners: gl below f1, gm between, gh above f2.
//
//   H(z) = gh + (gm - gh) v / (1 - p2 z^-1) + (gl - gm) u / (1 - p1 z^-1)
//   p1 = exp(-2 pi f1 / sampleRate),  p2 = exp(-2 pi f2 / sampleRate),  u = 1 - p1,  v = 1 - p2
//
// run as one biquad:
//
//   a1 = u + v - 2,  a2 = p1 p2,  t = (gm - gh) v
//   b2 = gh p1 p2,  b1 = gh a1 + (gm - gl) u p2 - p1 t,  b0 = t + (gl - gm) u + gh
//
// Each of the five values runs after its target through a ramp of 3.2 ms, and while one moves the design runs
// for every sample: a knob sweep has no zipper noise. With all at rest the coefficients stand, which gives
// the same samples to the bit.
#pragma once

#include "math/Biquad.h"
#include "math/OnePoleRamp.h"

// Gains are linear, 10^(dB * 0.05); corners in Hz, above 0.
struct BqTonestackValues {
    float gl = 1.0f;
    float gm = 1.0f;
    float gh = 1.0f;
    float f1 = 0.0f;
    float f2 = 0.0f;

    bool operator==(const BqTonestackValues&) const = default;
};

// The formulas above.
BiquadCoefficients<float> designBqTonestack(const BqTonestackValues& values, float sampleRate);

class BqTonestack {
public:
    BqTonestack(float lowDb, float midDb, float highDb, float f1Hz, float f2Hz, float sampleRate);
    BqTonestack(const BqTonestackValues& values, float sampleRate);

    // Control side. isInit puts the values there at once; without it they move. A corner at or above half the
    // rate is set to sampleRate * 0.495, with a warning.
    void set(const BqTonestackValues& values, bool isInit);
    void setDb(float lowDb, float midDb, float highDb, float f1Hz, float f2Hz, bool isInit);

    // Audio thread. n samples in place.
    void process(float* buffer, int n);

    // Zeroes the filter's state and stops each ramp's output where it is. Audio thread, or while it stands.
    void clear();

private:
    bool isAtRest() const;
    BqTonestackValues tick();

    const float sampleRate_;
    OnePoleRamp gl_;
    OnePoleRamp gm_;
    OnePoleRamp gh_;
    OnePoleRamp f1_;
    OnePoleRamp f2_;
    BqTonestackValues designedFor_;
    BiquadCoefficients<float> coefficients_;
    BiquadState<float> state_;
};
