#include "algorithms/reverb/SpringRamp.h"

#include <cmath>
#include <numbers>

namespace rvb {

SpringRamp::SpringRamp(float first, float second, float seconds, float sampleRate)
    : target1_(first), target2_(second), current1_(first), current2_(second) {
    setTime(seconds, sampleRate);
}

void SpringRamp::setTime(float seconds, float sampleRate) {
    const double step =
        seconds > 0.0f ? -std::expm1(-2.0 * std::numbers::pi / (static_cast<double>(seconds) * sampleRate))
                       : 1.0;
    step_.store(static_cast<float>(step), std::memory_order_relaxed);
}

void SpringRamp::process(const float* first, const float* second, float* out, int n) {
    if (isSnapping1_.load(std::memory_order_relaxed) &&
        isSnapping1_.exchange(false, std::memory_order_acquire))
        current1_ = firstTarget();
    if (isSnapping2_.load(std::memory_order_relaxed) &&
        isSnapping2_.exchange(false, std::memory_order_acquire))
        current2_ = secondTarget();
    const float target1 = firstTarget();
    const float target2 = secondTarget();
    const float k = step_.load(std::memory_order_relaxed);
    float current1 = current1_;
    float current2 = current2_;
    if (current1 + (target1 - current1) * k == current1 && current2 + (target2 - current2) * k == current2) {
        for (int i = 0; i < n; ++i)
            out[i] = current2 * second[i] + current1 * first[i];
        return;
    }
    for (int i = 0; i < n; ++i) {
        current1 += (target1 - current1) * k;
        current2 += (target2 - current2) * k;
        out[i] = current2 * second[i] + current1 * first[i];
    }
    current1_ = current1;
    current2_ = current2;
}

}  // namespace rvb
