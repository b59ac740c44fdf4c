#include <cmath>

#include "math/TrapezoidalFilter.h"

namespace {

// g and k with the output mix of one kind.
TrapezoidalCoefficients coefficients(double g, double k, double m0, double m1, double m2) {
    const double a1 = 1.0 / (1.0 + g * (g + k));
    const double a2 = g * a1;
    const double a3 = g * a2;
    return {static_cast<float>(a1), static_cast<float>(a2), static_cast<float>(a3),
            static_cast<float>(m0), static_cast<float>(m1), static_cast<float>(m2)};
}

double warped(double freqHz, double sampleRate) {
    return std::tan(3.1415927 * freqHz / sampleRate);
}

TrapezoidalCoefficients designLowPass(double, double freqHz, double q, double sampleRate) {
    return coefficients(warped(freqHz, sampleRate), 1.0 / q, 0.0, 0.0, 1.0);
}

TrapezoidalCoefficients designHighPass(double, double freqHz, double q, double sampleRate) {
    const double k = 1.0 / q;
    return coefficients(warped(freqHz, sampleRate), k, 1.0, -k, -1.0);
}

TrapezoidalCoefficients designBell(double a, double freqHz, double q, double sampleRate) {
    const double k = 1.0 / (q * a);
    return coefficients(warped(freqHz, sampleRate), k, 1.0, k * (a * a - 1.0), 0.0);
}

TrapezoidalCoefficients designLowShelf(double a, double freqHz, double q, double sampleRate) {
    const double k = 1.0 / q;
    const double g = warped(freqHz, sampleRate) / std::sqrt(a);
    return coefficients(g, k, 1.0, k * (a - 1.0), a * a - 1.0);
}

TrapezoidalCoefficients designHighShelf(double a, double freqHz, double q, double sampleRate) {
    const double k = 1.0 / q;
    const double g = warped(freqHz, sampleRate) * std::sqrt(a);
    return coefficients(g, k, a * a, k * a * (1.0 - a), 1.0 - a * a);
}

}  // namespace

namespace trapezoidal {

constinit const TrapezoidalLaw lowPass{"SVLpf", designLowPass};
constinit const TrapezoidalLaw highPass{"SVHpf", designHighPass};
constinit const TrapezoidalLaw bell{"SVBell", designBell};
constinit const TrapezoidalLaw lowShelf{"SVLowShelf", designLowShelf};
constinit const TrapezoidalLaw highShelf{"SVHighShelf", designHighShelf};

}  // namespace trapezoidal
