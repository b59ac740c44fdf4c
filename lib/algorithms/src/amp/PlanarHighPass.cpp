#include "algorithms/amp/PlanarHighPass.h"

#include <cmath>
#include <numbers>

PlanarHighPass::PlanarHighPass(float cornerHz, float sampleRateHz, int phases)
    : kernels_(&fft::vectorKernels()) {
    const double decayPerSample = -2.0 * std::numbers::pi * cornerHz / sampleRateHz;
    recursion_.phases = phases;
    for (int p = 0; p < 5; ++p)
        recursion_.polePower[p] = static_cast<float>(std::exp(decayPerSample * (p + 1)));
    for (int n = 0; n < 8; ++n) {
        recursion_.groupPower[n] = static_cast<float>(std::exp(decayPerSample * phases * (n + 1)));
    }
    reset();
}

void PlanarHighPass::process(float* planes, int length, int stride) {
    kernels_->onePoleHighPass(recursion_, planes, stride, length);
}

void PlanarHighPass::reset() {
    recursion_.lastIn = 0.0f;
    recursion_.lastOut = 0.0f;
}
