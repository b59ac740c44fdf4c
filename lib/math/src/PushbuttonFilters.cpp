#include "math/PushbuttonFilters.h"

PushbuttonFilters::PushbuttonFilters(int length, float sampleRate, IFilter* filter)
    : length_(length),
      ramp_(0.01f, sampleRate),
      filter_(filter),
      offWet_(length),
      onWet_(length),
      gain_(length) {}

void PushbuttonFilters::reset() {
    ramp_.snap(ramp_.target());
}

void PushbuttonFilters::process(float* buffer) {
    filter_->process(buffer, offWet_.data(), onWet_.data());
    if (ramp_.isAtRest()) {
        const float s = ramp_.current();
        for (int i = 0; i < length_; ++i)
            buffer[i] = offWet_[i] * (1.0f - s) + onWet_[i] * s;
        return;
    }
    ramp_.process(gain_.data(), length_);
    for (int i = 0; i < length_; ++i)
        buffer[i] = offWet_[i] * (1.0f - gain_[i]) + onWet_[i] * gain_[i];
}

void PushbuttonFilters::setSwitch(bool on) {
    state_.store(on ? 1 : 0, std::memory_order_relaxed);
    ramp_.setTarget(on ? 1.0f : 0.0f);
}

void PushbuttonFilters::initSwitch(bool on) {
    setSwitch(on);
    ramp_.snap(ramp_.target());
}
