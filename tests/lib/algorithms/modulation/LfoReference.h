// The oscillators of the tremolos in double precision, from their formulas alone.
#pragma once

#include <cmath>
#include <numbers>

namespace reference {

constexpr double kSampleRate = 44100.0;

// A rate as an oscillator runs it: its increment is a whole number of 2^32nds of a cycle.
inline double cyclesPerSample(double hz) {
    constexpr double kCycle = 4294967296.0;
    return std::floor(hz / kSampleRate * kCycle + 0.5) / kCycle;
}

inline double wrapped(double cycles) {
    return cycles - std::floor(cycles + 0.5);
}

inline double parabolicSine(double cycles) {
    const double p = 2.0 * std::numbers::pi * wrapped(cycles);
    const double y = 1.2732395 * p - 0.40528473 * p * std::fabs(p);
    const double sign = p < 0.0 ? -1.0 : 1.0;
    return (0.77633023 + sign * 0.2230851 * y) * y;
}

// The bipolar composite LFO; knobs as CompositeLfo has them.
struct Composite {
    double hz;
    double duty = 0.5;
    double dist = 0.5;
    double shapeMix = 0.0;
    bool isTriangle = false;

    // n: samples since the start, the first is 1.
    double at(long n) const { return at(static_cast<double>(n)); }
    double at(double n) const {
        const double cycles = n * cyclesPerSample(hz);
        const double bend = 2.0 * duty - 1.0 + parabolicSine(cycles + (90.0 - 45.0 + 90.0 * dist) / 360.0);
        const double main = parabolicSine(cycles + (-90.0 + 60.0 * bend) / 360.0);
        const double x = cycles - std::floor(cycles);
        const double other =
            isTriangle ? 1.0 - 4.0 * std::fabs(x - 0.5) : parabolicSine(cycles - 90.0 / 360.0);
        return shapeMix * other + (1.0 - shapeMix) * main;
    }
};

// t30 of a knob.
inline double t30(double knob) {
    return (std::pow(5.44445, knob) - 1.0) / (5.44445 - 1.0);
}

}  // namespace reference
