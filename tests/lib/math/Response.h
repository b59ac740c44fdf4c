// Measured and ideal frequency responses.
#pragma once

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace response {

using Complex = std::complex<double>;

// The discrete-time Fourier transform of an impulse response, by Horner's rule. Most of the time of these
// tests is spent here, and where they are compiled without optimisation the library's complex numbers take
// ten times as long.
template <typename T>
Complex transform(const std::vector<T>& impulseResponse, double freqHz, double sampleRate) {
    const double radians = -2.0 * std::numbers::pi * freqHz / sampleRate;
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    const T* const samples = impulseResponse.data();
    double real = 0.0;
    double imaginary = 0.0;
    for (std::size_t i = impulseResponse.size(); i-- > 0;) {
        const double turned = real * cosine - imaginary * sine;
        imaginary = real * sine + imaginary * cosine;
        real = turned + static_cast<double>(samples[i]);
    }
    return {real, imaginary};
}

// What process(buffer, n) makes of a unit impulse in n samples.
template <typename T, typename Process>
std::vector<T> impulse(int n, Process&& process) {
    std::vector<T> buffer(static_cast<size_t>(n), T(0));
    buffer[0] = T(1);
    process(buffer.data(), n);
    return buffer;
}

// s of the analogue prototype with its corner at 1, for a bilinear transform that is exact at cornerHz.
inline Complex prototypeS(double freqHz, double cornerHz, double sampleRate) {
    const double w = std::numbers::pi / sampleRate;
    return {0.0, std::tan(w * freqHz) / std::tan(w * cornerHz)};
}

// Second-order analogue prototypes. gain is the linear amplitude where the filter is at its full effect.
inline Complex lowPass(Complex s, double q) {
    return 1.0 / (s * s + s / q + 1.0);
}
inline Complex highPass(Complex s, double q) {
    return s * s / (s * s + s / q + 1.0);
}
inline Complex bandPass(Complex s, double q) {
    return s / q / (s * s + s / q + 1.0);
}
inline Complex bell(Complex s, double q, double gain) {
    const double a = std::sqrt(gain);
    return (s * s + s * a / q + 1.0) / (s * s + s / (a * q) + 1.0);
}
inline Complex lowShelf(Complex s, double q, double gain) {
    const double a = std::sqrt(gain);
    const double b = std::sqrt(a) / q;
    return a * (s * s + b * s + a) / (a * s * s + b * s + 1.0);
}
inline Complex highShelf(Complex s, double q, double gain) {
    const double a = std::sqrt(gain);
    const double b = std::sqrt(a) / q;
    return a * (a * s * s + b * s + 1.0) / (s * s + b * s + a);
}

}  // namespace response
