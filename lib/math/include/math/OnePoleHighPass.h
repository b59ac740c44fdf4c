// The coupling capacitor: a one-pole high-pass.
//
//   c = 1 - exp(-2 pi freqHz / sampleRate),   s <- s + (x - s) c,   y = x - s,   s = 0 at the start
//
// It runs as y[n] = p (x[n] - x[n-1] + y[n-1]) with p = 1 - c, which is the same filter. The form with s
// stalls short of a constant input by a rounding error over c, an offset that this one does not have: a
// constant input ends at an output of exactly 0 (on a thread that flushes denormals).
#pragma once

#include "math/OnePoleScan.h"

class OnePoleHighPass {
public:
    // freqHz: the -3 dB corner, above 0 and well below half of sampleRate (Hz).
    OnePoleHighPass(float freqHz, float sampleRate);

    // Audio thread. One sample.
    float process(float x) {
        lastOutput_ = scan_.pole() * (x - lastInput_) + scan_.pole() * lastOutput_;
        lastInput_ = x;
        return lastOutput_;
    }

    // Audio thread. n samples in place.
    void process(float* buffer, int n);

    // Back to silence.
    void reset();

private:
    OnePoleScan scan_;
    float lastInput_ = 0.0f;
    float lastOutput_ = 0.0f;
};
