#include "math/FractionalDelay.h"

#include <utility>

#include "utility/Log.h"

FractionalDelay::FractionalDelay(std::shared_ptr<CircularBuffer<float>> buffer, int interpolation)
    : buffer_(std::move(buffer)) {
    setInterpolation(interpolation);
}

FractionalDelay::FractionalDelay(int maxDelaySamples, int interpolation)
    : FractionalDelay(std::make_shared<CircularBuffer<float>>(maxDelaySamples + 1), interpolation) {}

void FractionalDelay::setInterpolation(int kind) {
    if (kind != kLinear && kind != kThirdOrder) {
        TVK_WARN("Invalid interpolation type, defaulting to linear");
        kind = kLinear;
    }
    interpolation_ = kind;
    readRoutine_ = kind == kThirdOrder ? &FractionalDelay::readThirdOrder : &FractionalDelay::readLinear;
}

void FractionalDelay::write(float sample) {
    (*buffer_)[writeIndex_] = sample;
    writeIndex_ = buffer_->wrapped(writeIndex_ + 1);
}

float FractionalDelay::read(double delaySamples) {
    const double delay = limited(delaySamples);
    delaySamples_ = static_cast<float>(delay);
    const double position = writeIndex_ - 1 - delay;
    int index = static_cast<int>(position);
    if (position < index) --index;
    return (this->*readRoutine_)(index, static_cast<float>(position - index));
}

float FractionalDelay::process(float sample, double delaySamples) {
    write(sample);
    return read(delaySamples);
}

double FractionalDelay::limited(double delaySamples) {
    // The comparison is false for a not-a-number, which counts as too short.
    if (!(delaySamples >= 0.0)) {
        if (!hasLoggedNegative_) TVK_ERROR("Attempted to use a delay less than 0 samples");
        hasLoggedNegative_ = true;
        return 0.0;
    }
    const int longest = buffer_->size() - 1;
    if (delaySamples > longest) {
        if (!hasLoggedTooLong_) TVK_ERROR("Delay out of bounds, increase the size of the delay buffer");
        hasLoggedTooLong_ = true;
        return longest;
    }
    return delaySamples;
}

float FractionalDelay::readLinear(int index, float fraction) const {
    const CircularBuffer<float>& x = *buffer_;
    const float before = x[index];
    return before + fraction * (x[index + 1] - before);
}

float FractionalDelay::readThirdOrder(int index, float fraction) const {
    const int newest = writeIndex_ - 1;
    const int oldest = writeIndex_ - buffer_->size();
    if (index - 1 < oldest || index + 2 > newest) return readLinear(index, fraction);
    const CircularBuffer<float>& x = *buffer_;
    const float f = fraction;
    const float below = f + 1.0f, above = f - 1.0f, farAbove = f - 2.0f;
    return x[index - 1] * (f * above * farAbove * (-1.0f / 6.0f)) +
           x[index] * (below * above * farAbove * 0.5f) + x[index + 1] * (below * f * farAbove * -0.5f) +
           x[index + 2] * (below * f * above * (1.0f / 6.0f));
}
