// Spectra in double precision for the tests on responses.
#pragma once

#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace spectrum {

using Complex = std::complex<double>;

// Sum of x[n] exp(-+ j 2 pi k n / N), N a power of two: radix 2, decimation in time (Cooley and Tukey 1965).
inline std::vector<Complex> transform(const std::vector<Complex>& x, bool isInverse = false) {
    const std::size_t size = x.size();
    if (size == 1) return x;
    std::vector<Complex> even, odd;
    for (std::size_t n = 0; n < size; n += 2) {
        even.push_back(x[n]);
        odd.push_back(x[n + 1]);
    }
    even = transform(even, isInverse);
    odd = transform(odd, isInverse);
    std::vector<Complex> out(size);
    for (std::size_t k = 0; k < size / 2; ++k) {
        const double angle =
            (isInverse ? 2.0 : -2.0) * std::numbers::pi * static_cast<double>(k) / static_cast<double>(size);
        const Complex turned = std::polar(1.0, angle) * odd[k];
        out[k] = even[k] + turned;
        out[k + size / 2] = even[k] - turned;
    }
    return out;
}

// Of samples that are zero from their end to size.
inline std::vector<Complex> ofSamples(const std::vector<float>& samples, std::size_t size) {
    std::vector<Complex> padded(samples.begin(), samples.end());
    padded.resize(size);
    return transform(padded);
}

// The samples of minimum phase with these magnitudes: the cepstrum folded onto positive time (Oppenheim and
// Schafer 1989). Magnitudes more than 100 dB down count as that.
inline std::vector<double> minimumPhase(const std::vector<Complex>& values) {
    const std::size_t size = values.size();
    double most = 0.0;
    for (const Complex& value : values)
        most = std::max(most, std::abs(value));
    std::vector<Complex> logs;
    for (const Complex& value : values)
        logs.emplace_back(std::log(std::max(std::abs(value), 1e-5 * most)));
    std::vector<Complex> cepstrum = transform(logs, true);
    for (std::size_t n = 0; n < size; ++n) {
        const double fold = n == 0 || n == size / 2 ? 1.0 : n < size / 2 ? 2.0 : 0.0;
        cepstrum[n] *= fold / static_cast<double>(size);
    }
    std::vector<Complex> folded = transform(cepstrum);
    for (Complex& value : folded)
        value = std::exp(value);
    std::vector<double> samples;
    for (const Complex& sample : transform(folded, true))
        samples.push_back(sample.real() / static_cast<double>(size));
    return samples;
}

}  // namespace spectrum
