#include "math/BiquadDesign.h"

#include <algorithm>
#include <cmath>

namespace {

using Coefficients = BiquadCoefficients<double>;

Coefficients normalised(double a0, double a1, double a2, double b0, double b1, double b2) {
    return {a1 / a0, a2 / a0, b2 / a0, b1 / a0, b0 / a0};
}

Coefficients designLowPass(double gain, double w0, double q) {
    const double c = std::cos(w0);
    const double alpha = std::sin(w0) / (2.0 * q);
    const double b = gain * (1.0 - c);
    return normalised(1.0 + alpha, -2.0 * c, 1.0 - alpha, b / 2.0, b, b / 2.0);
}

Coefficients designHighPass(double gain, double w0, double q) {
    const double c = std::cos(w0);
    const double alpha = std::sin(w0) / (2.0 * q);
    const double b = gain * (1.0 + c);
    return normalised(1.0 + alpha, -2.0 * c, 1.0 - alpha, b / 2.0, -b, b / 2.0);
}

Coefficients designBandPass(double gain, double w0, double q) {
    const double c = std::cos(w0);
    const double alpha = std::sin(w0) / (2.0 * q);
    return normalised(1.0 + alpha, -2.0 * c, 1.0 - alpha, gain * alpha, 0.0, -gain * alpha);
}

Coefficients designPeak(double rootGain, double w0, double q) {
    const double c = std::cos(w0);
    const double alpha = std::sin(w0) / (2.0 * q);
    return normalised(1.0 + alpha / rootGain, -2.0 * c, 1.0 - alpha / rootGain, 1.0 + alpha * rootGain,
                      -2.0 * c, 1.0 - alpha * rootGain);
}

Coefficients designPeakProportionalQ(double rootGain, double w0, double q) {
    const double x = std::abs(std::log10(rootGain) * 40.0) * 0.025;
    const double k = x > 0.01 ? std::sqrt(1.0 - std::pow(100.0, -x)) : 0.21214949367192157;
    return designPeak(rootGain, w0, q * k);
}

Coefficients designPeak2(double gain, double w0, double q) {
    const double c = std::cos(w0);
    const double s = std::sin(w0);
    const double a2 = (2.0 * q - s) / (2.0 * q + s);
    const double a1 = -(1.0 + a2) * c;
    const double b0 = ((1.0 + a2) + (1.0 - a2) * gain) / 2.0;
    const double b2 = ((1.0 + a2) + (a2 - 1.0) * gain) / 2.0;
    return {a1, a2, b2, a1, b0};
}

// 2 sqrt(A) alpha of the cookbook. A slope far above 1 would need a negative bandwidth for small gains.
double shelfBeta(double rootGain, double w0, double slope) {
    const double radicand = rootGain * ((rootGain + 1.0 / rootGain) * (1.0 / slope - 1.0) + 2.0);
    return std::sin(w0) * std::sqrt(std::max(radicand, 0.0));
}

Coefficients designLowShelf(double rootGain, double w0, double slope) {
    const double c = std::cos(w0);
    const double beta = shelfBeta(rootGain, w0, slope);
    const double plus = rootGain + 1.0;
    const double minus = rootGain - 1.0;
    return normalised(plus + minus * c + beta, -2.0 * (minus + plus * c), plus + minus * c - beta,
                      rootGain * (plus - minus * c + beta), 2.0 * rootGain * (minus - plus * c),
                      rootGain * (plus - minus * c - beta));
}

Coefficients designHighShelf(double rootGain, double w0, double slope) {
    const double c = std::cos(w0);
    const double beta = shelfBeta(rootGain, w0, slope);
    const double plus = rootGain + 1.0;
    const double minus = rootGain - 1.0;
    return normalised(plus - minus * c + beta, 2.0 * (minus - plus * c), plus - minus * c - beta,
                      rootGain * (plus + minus * c + beta), -2.0 * rootGain * (minus + plus * c),
                      rootGain * (plus + minus * c - beta));
}

}  // namespace

namespace biquad {

constinit const BiquadLaw lowPass{"BqLpf", 0.05, 1.0, designLowPass};
constinit const BiquadLaw highPass{"BqHpf", 0.05, 1.0, designHighPass};
constinit const BiquadLaw bandPass{"BqBandPass", 0.05, 1.0, designBandPass};
constinit const BiquadLaw peak{"BqPeak", 0.025, 1.0, designPeak};
constinit const BiquadLaw peakProportionalQ{"BqPeakProportionalQ", 0.025, 1.0, designPeakProportionalQ};
constinit const BiquadLaw peak2{"BqPeak2", 0.05, 1.0, designPeak2};
constinit const BiquadLaw lowShelf{"BqLowShelf", 0.025, 0.25, designLowShelf};
constinit const BiquadLaw highShelf{"BqHighShelf", 0.025, 0.25, designHighShelf};
constinit const BiquadLaw peakDouble{"BqPeakDouble", 0.025, 1.0, designPeak};
constinit const BiquadLaw peak2Double{"BqPeak2Double", 0.05, 1.0, designPeak2};
constinit const BiquadLaw lowShelfDouble{"BqLowShelfDouble", 0.025, 0.25, designLowShelf};

}  // namespace biquad
