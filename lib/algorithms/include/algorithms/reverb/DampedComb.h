// A comb with a low-pass in its loop (J. A. Moorer, "About this reverberation business", Computer Music
// Journal 3(2), 1979).
//
//   out = line[k],   store <- out (1 - d) + store d,   line[k] = in + store feedback
//
// k runs around the line's length, which is the delay. d = exp(-2 pi dampingHz / fs).
#pragma once

#include <vector>

namespace rvb {

class DampedComb {
public:
    // lengthSamples: at least 1.
    explicit DampedComb(int lengthSamples);

    // Adds n samples of output to sum; in and sum are apart. Audio thread.
    void addTo(float* sum, const float* in, int n, float d, float feedback);

    int length() const { return static_cast<int>(line_.size()); }

    // Zeroes line and store.
    void clear();

private:
    std::vector<float> line_;
    int k_ = 0;
    float store_ = 0.0f;
};

}  // namespace rvb
