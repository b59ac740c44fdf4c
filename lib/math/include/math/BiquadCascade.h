// Many fixed second-order sections in series, run as a pipeline across vector lanes.
//
// Done one after the other, sections wait for each other: thirty of them cost thirty times the latency of a
// recursion for every sample. Here section j works on sample n - j while section 0 works on sample n, so a
// step costs one recursion however many there are. The price is that the output comes lateness() samples
// later than the product of the sections would give it; for the caller to make up where a delay follows.
#pragma once

#include "math/BiquadDesign.h"
#include "math/fft/VectorKernels.h"

class BiquadCascade {
public:
    // rows: 1 to 32 sections in the order of the signal; copied.
    BiquadCascade(const BiquadCoefficients<float>* rows, int sections);

    // n samples; in may be out. Audio thread.
    void process(const float* in, float* out, int n) { kernels_->biquadCascade(lanes_, in, out, n); }

    int lateness() const { return lanes_.sections - 1; }

    // Zeroes the states.
    void clear();

private:
    const fft::VectorKernels* kernels_;
    fft::BiquadLanes lanes_{};
};
