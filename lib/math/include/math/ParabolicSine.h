// The sine of an LFO: a parabola through 0 and +-pi, bent once more by its own square.
//
//   y = 1.2732395 p - 0.40528473 p |p|,   sine = (0.77633023 + 0.2230851 |y|) y
//
// Off by at most 0.0011 of the sine; the peak is 0.99941532.
#pragma once

#include <cmath>

// phase in radians, -pi to pi.
inline float parabolicSine(float phase) {
    const float y = 1.2732395f * phase - 0.40528473f * phase * std::fabs(phase);
    return (0.77633023f + 0.2230851f * std::fabs(y)) * y;
}
