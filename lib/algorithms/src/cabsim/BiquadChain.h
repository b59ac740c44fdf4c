// A few second-order sections with fixed values, one behind the other, and a gain.
#pragma once

#include <cstddef>
#include <vector>

#include "math/Biquad.h"

class BiquadChain {
public:
    BiquadChain(std::vector<BiquadCoefficients<float>> sections, float gain)
        : sections_(std::move(sections)), states_(sections_.size()), gain_(gain) {}

    // n samples in place.
    void process(float* buffer, int n) {
        for (std::size_t i = 0; i < sections_.size(); ++i)
            processBiquad(sections_[i], states_[i], buffer, n);
        for (int i = 0; i < n; ++i)
            buffer[i] *= gain_;
    }

    void clear() {
        for (BiquadState<float>& state : states_)
            state = {};
    }

private:
    const std::vector<BiquadCoefficients<float>> sections_;
    std::vector<BiquadState<float>> states_;
    const float gain_;
};
