// A filter whose frequency runs after its target. The filter is designed anew only while the ramp moves; at
// rest its coefficients stand.
//
// Filter: anything with setFrequency(float hz).
//
// Threads: setters on a control thread, the rest on the audio thread.
#pragma once

#include <cmath>

#include "math/OnePoleRamp.h"

template <typename Filter>
class RampedFrequency {
public:
    // The filter outlives this.
    RampedFrequency(float rampSeconds, float sampleRateHz, Filter& filter)
        : ramp_(rampSeconds, sampleRateHz), filter_(filter) {}

    // isInit: there at the next sample. A value that is not finite is ignored.
    void setTarget(float hz, bool isInit) {
        if (!std::isfinite(hz)) return;
        ramp_.setTarget(hz);
        if (isInit) ramp_.snap(hz);
    }

    float targetHz() const { return ramp_.target(); }
    bool isAtRest() const { return ramp_.isAtRest(); }

    // One sample of the way.
    void step() {
        if (!ramp_.isAtRest()) filter_.setFrequency(ramp_.tick());
    }

    // n samples of it, heard at their end alone.
    void skip(int n) {
        if (ramp_.isAtRest()) return;
        for (int i = 0; i < n; ++i)
            ramp_.tick();
        filter_.setFrequency(ramp_.current());
    }

private:
    OnePoleRamp ramp_;
    Filter& filter_;
};
