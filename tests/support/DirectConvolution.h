// The truth that convolvers are measured against: direct sums in double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/WhiteNoise.h"

// Noise that falls by 60 dB over its length behind a first arrival, as a room's or a cabinet's response does.
inline std::vector<float> decayingNoise(int count, unsigned seed) {
    std::vector<float> samples = whiteNoise(count, seed);
    for (int n = 0; n < count; ++n)
        samples[n] *= static_cast<float>(std::pow(10.0, -3.0 * n / count));
    if (count > 0) samples[0] = 1.0f;
    return samples;
}

// Output sample n of the input since silence. Both belong to the caller alone, so the thread sanitizer, which
// makes these sums tens of times slower, need not watch it.
#if defined(__SANITIZE_THREAD__)
[[gnu::no_sanitize("thread")]]
#endif
inline double
convolvedSample(const std::vector<float>& in, const std::vector<float>& ir, int n) {
    const float* const newest = in.data() + n;
    const float* const taps = ir.data();
    const int last = std::min(n, static_cast<int>(ir.size()) - 1);
    double sum = 0.0;
    for (int k = 0; k <= last; ++k)
        sum += static_cast<double>(taps[k]) * static_cast<double>(*(newest - k));
    return sum;
}

// The greatest error of out against the convolution over the greatest true sample, both at the samples first,
// first + step, ... below end.
inline double relativeError(const std::vector<float>& out, const std::vector<float>& in,
                            const std::vector<float>& ir, int first, int end, int step = 1) {
    double error = 0.0;
    double peak = 0.0;
    for (int n = first; n < end; n += step) {
        const double truth = convolvedSample(in, ir, n);
        error = std::max(error, std::abs(static_cast<double>(out[n]) - truth));
        peak = std::max(peak, std::abs(truth));
    }
    return peak > 0.0 ? error / peak : error;
}
