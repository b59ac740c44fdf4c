#include "math/DelayTimeControl.h"

#include <algorithm>
#include <cmath>

#include "utility/Log.h"

DelayTimeControl::DelayTimeControl(float maxSeconds, float glideSeconds, float sampleRateHz)
    : sampleRateHz_(sampleRateHz),
      maxSamples_(static_cast<double>(maxSeconds) * sampleRateHz),
      step_(-std::expm1(-1.0 / (static_cast<double>(glideSeconds) * sampleRateHz))) {}

void DelayTimeControl::setDelayTime(int which, float seconds) {
    double samples = static_cast<double>(seconds) * sampleRateHz_;
    if (!(samples <= maxSamples_)) {
        TVK_ERROR("newDelayTime<=maxDlyTime");
        samples = maxSamples_;
    }
    samples = std::max(samples, 0.0);
    target_.store(samples, std::memory_order_relaxed);
    if (which == 1) current_.store(samples, std::memory_order_relaxed);
}

float DelayTimeControl::getDelayTime() const {
    return static_cast<float>(target_.load(std::memory_order_relaxed) / sampleRateHz_);
}

int DelayTimeControl::maxDelaySamples() const {
    return static_cast<int>(std::ceil(maxSamples_));
}
