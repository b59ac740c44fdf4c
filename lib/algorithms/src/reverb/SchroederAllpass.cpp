#include "algorithms/reverb/SchroederAllpass.h"

#include <algorithm>

namespace rvb {

SchroederAllpass::SchroederAllpass(int lengthSamples, float forwardGain, float backGain)
    : line_(static_cast<std::size_t>(std::max(lengthSamples, 1))),
      forwardGain_(forwardGain),
      backGain_(backGain) {}

void SchroederAllpass::process(float* buffer, int n) {
    const float forward = forwardGain_;
    const float back = backGain_;
    while (n > 0) {
        const int run = std::min(n, length() - k_);
        float* line = line_.data() + k_;
        for (int i = 0; i < run; ++i) {
            const float v = line[i];
            const float x = buffer[i];
            buffer[i] = v + x * forward;
            line[i] = x + v * back;
        }
        k_ = k_ + run == length() ? 0 : k_ + run;
        buffer += run;
        n -= run;
    }
}

void SchroederAllpass::clear() {
    std::fill(line_.begin(), line_.end(), 0.0f);
}

}  // namespace rvb
