#include "algorithms/modulation/ModulationDelay.h"

#include <algorithm>
#include <cmath>

ModulationDelay::ModulationDelay(float maxSeconds, float sampleRateHz, float feedback)
    : line_(static_cast<std::size_t>(std::ceil(maxSeconds * sampleRateHz)) + 2, 0.0f), feedback_(feedback) {}

void ModulationDelay::process(const float* in, float delaySamples, float* out, int count) {
    const int size = static_cast<int>(line_.size());
    const float limited = std::clamp(delaySamples, 2.0f, static_cast<float>(size - 2));
    const int whole = static_cast<int>(limited - 0.5f);
    const float frac = limited - static_cast<float>(whole);
    for (int n = 0; n < count; ++n) {
        const int newer = writeIndex_ >= whole ? writeIndex_ - whole : writeIndex_ - whole + size;
        const int older = newer > 0 ? newer - 1 : size - 1;
        last_ = line_[older] + (1.0f - frac) * (line_[newer] - last_);
        line_[writeIndex_] = in[n] + feedback_ * last_;
        out[n] = last_;
        writeIndex_ = writeIndex_ + 1 < size ? writeIndex_ + 1 : 0;
    }
}

void ModulationDelay::reset() {
    std::fill(line_.begin(), line_.end(), 0.0f);
    last_ = 0.0f;
}
