// Gains of one block from a ramp.
#pragma once

#include <algorithm>

#include "math/OnePoleRamp.h"

// gains: length values, the next ticks of the ramp. A ramp at rest gives one value without its recursion,
// the same to the bit.
inline void fillGains(OnePoleRamp& ramp, float* gains, int length) {
    if (ramp.isAtRest()) {
        std::fill_n(gains, length, ramp.current());
        return;
    }
    for (int n = 0; n < length; ++n)
        gains[n] = ramp.tick();
}

// In place.
inline void applyGains(float* samples, const float* gains, int length) {
    for (int n = 0; n < length; ++n)
        samples[n] *= gains[n];
}
