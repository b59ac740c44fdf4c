// A long FIR filter computed directly: the part of a response that must come without delay.
//
//   y[n] = sum over k < taps of h[k] x[n - k]
#pragma once

#include <memory>

#include "math/fft/AlignedFloats.h"

// Coefficients for DirectFir, reversed in time and padded with zeros at the old end to what the vector kernel
// takes. Shared between filters.
class DirectFirCoefficients {
public:
    // h: taps values, may be empty.
    DirectFirCoefficients(const float* h, int taps);

    int taps() const { return taps_; }
    int paddedTaps() const { return static_cast<int>(reversed_.size()); }
    const float* reversed() const { return reversed_.data(); }

private:
    const int taps_;
    fft::AlignedFloats reversed_;
};

class DirectFir {
public:
    // longestBlock: samples of the longest call.
    DirectFir(std::shared_ptr<const DirectFirCoefficients> coefficients, int longestBlock);

    // Writes count samples to out; count up to longestBlock. in and out do not overlap. Audio thread.
    void process(const float* in, float* out, int count);

    // Forgets all input.
    void reset();

private:
    const std::shared_ptr<const DirectFirCoefficients> coefficients_;
    fft::AlignedFloats state_;    // the last paddedTaps - 1 samples, then the block
    fft::AlignedFloats vectors_;  // a block that does not end on a whole vector
};
