#include "math/PushbuttonFilter.h"

#include <algorithm>

PushbuttonFilter::PushbuttonFilter(int length, float sampleRate, IFilter* filter)
    : length_(length), ramp_(0.02f, sampleRate), filter_(filter), wet_(length), gain_(length) {}

void PushbuttonFilter::reset() {
    ramp_.snap(ramp_.target());
}

void PushbuttonFilter::process(float* buffer) {
    std::copy_n(buffer, length_, wet_.data());
    filter_->process(wet_.data());
    if (ramp_.isAtRest()) {
        const float s = ramp_.current();
        for (int i = 0; i < length_; ++i)
            buffer[i] = buffer[i] * (1.0f - s) + wet_[i] * s;
        return;
    }
    ramp_.process(gain_.data(), length_);
    for (int i = 0; i < length_; ++i)
        buffer[i] = buffer[i] * (1.0f - gain_[i]) + wet_[i] * gain_[i];
}

void PushbuttonFilter::setSwitch(bool on) {
    state_.store(on ? 1 : 0, std::memory_order_relaxed);
    ramp_.setTarget(on ? 1.0f : 0.0f);
}

void PushbuttonFilter::initSwitch(bool on) {
    setSwitch(on);
    ramp_.snap(ramp_.target());
}
