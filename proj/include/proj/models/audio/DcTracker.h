// Follows the DC of one analogue input and takes it away: a one-pole low-pass, subtracted.
//
//   state += (x - state) * c,   y = x - state,   c = 1 - exp(-2 pi f / fs),   f = 5 Hz
//
// Audio thread.
#pragma once

#include <cmath>

class DcTracker {
public:
    explicit DcTracker(float sampleRateHz)
        : coefficient_(1.0f - std::exp(-6.2831855f * kCornerHz / sampleRateHz)) {}

    float process(float x) {
        state_ += (x - state_) * coefficient_;
        return x - state_;
    }

private:
    static constexpr float kCornerHz = 5.0f;

    float coefficient_;
    float state_ = 0.0f;
};
