// The step of a one-pole follower: 1 - exp(-1 / (seconds * sampleRateHz)).
#pragma once

#include <cmath>

inline float smoothingCoefficient(double seconds, double sampleRateHz) {
    return static_cast<float>(-std::expm1(-1.0 / (seconds * sampleRateHz)));
}
