// One linear gain of a chain over a block, in place.
#pragma once

inline void scale(float* buffer, float gain, int length) {
    for (int n = 0; n < length; ++n)
        buffer[n] *= gain;
}
