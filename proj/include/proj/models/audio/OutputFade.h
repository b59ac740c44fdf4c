// The gain of one output channel: 0 while muted, then up through a one-pole with a corner of 4 Hz, so that
// the speaker hears no step when the streams start.
//
// Audio thread.
#pragma once

#include "math/OnePoleRamp.h"

class OutputFade {
public:
    // Muted, with a gain of 0.
    explicit OutputFade(float sampleRateHz) : ramp_(kTimeConstantSeconds, sampleRateHz) {}

    void setMuted(bool muted) { ramp_.setTarget(muted ? 0.0f : 1.0f); }

    // The gain of the next sample.
    float next() { return ramp_.tick(); }

private:
    static constexpr float kTimeConstantSeconds = 0.15915494f / 4.0f;

    OnePoleRamp ramp_;
};
