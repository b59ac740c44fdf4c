// Amplitude of one harmonic of a curve driven with a sine about its rest point, in volts.
#pragma once

#include <cmath>
#include <numbers>

#include "Curve.h"

inline double harmonic(const Curve& curve, double amplitudeVolts, int order) {
    constexpr int kSteps = 4096;
    double re = 0.0, im = 0.0;
    for (int n = 0; n < kSteps; ++n) {
        const double phase = 2.0 * std::numbers::pi * n / kSteps;
        const double y = curve.volts(amplitudeVolts * std::cos(phase)) - curve.volts(0.0);
        re += y * std::cos(order * phase);
        im += y * std::sin(order * phase);
    }
    return std::hypot(re, im) * 2.0 / kSteps;
}
