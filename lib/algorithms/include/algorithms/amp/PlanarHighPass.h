// One-pole high-pass over the planes of an oversampled block; with one plane, the DC blocker behind a valve
// stage.
//
//   c = 1 - exp(-2 pi f / fs);   s <- s + (x - s) c;   y = x - s
//
// run in the equal form y[n] = (1 - c) (y[n-1] + x[n] - x[n-1]), whose float rounding leaves no rest of a
// constant input and whose recursion a block can look ahead of. Gain 1 at fs / 2 within c / 2, 0 at DC.
#pragma once

#include "math/fft/VectorKernels.h"

class PlanarHighPass {
public:
    // cornerHz: f. sampleRateHz: fs, that of the samples given to process. phases: planes of a block, 1 to 5.
    PlanarHighPass(float cornerHz, float sampleRateHz, int phases = 1);

    // In place: `phases` planes of length samples, stride floats apart, in the order of time sample n of
    // plane 0, of plane 1, ..., then n + 1 (UpDownSampler::upToPlanes). With one plane stride has no meaning.
    void process(float* planes, int length, int stride = 0);

    void reset();

private:
    const fft::VectorKernels* kernels_;
    fft::HighPassRecursion recursion_{};
};
