#include "picture/Spectrum.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

#include "math/fft/RealFft.h"

namespace tvk::picture {

namespace {

constexpr double kFloorDb = -200.0;

std::vector<float> hann(int length) {
    std::vector<float> window(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < window.size(); ++i)
        window[i] = static_cast<float>(
            0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * static_cast<double>(i) / length));
    return window;
}

}  // namespace

Spectrum::Spectrum(const std::vector<float>& samples, int rateHz)
    : rateHz_(rateHz), power_(kWindow / 2 + 1, 0.0) {
    const std::vector<float> window = hann(kWindow);
    fft::RealFft transform(kWindow);
    std::vector<float> block(kWindow);
    std::vector<std::complex<float>> bins(power_.size());
    // A Hann window lets half of a sine's amplitude through, and a real sine has half of it in each of its
    // bins.
    constexpr double kScale = 4.0 / kWindow;
    int blocks = 0;
    std::size_t from = 0;
    do {
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = from + i < samples.size() ? samples[from + i] * window[i] : 0.0f;
        transform.forward(block.data(), bins.data());
        for (std::size_t bin = 0; bin < power_.size(); ++bin)
            power_[bin] += std::norm(std::complex<double>(bins[bin]) * kScale);
        ++blocks;
        from += kWindow / 2;
    } while (from + kWindow <= samples.size());
    for (double& power : power_)
        power /= blocks;
}

std::optional<double> Spectrum::loudestDb(double fromHz, double toHz) const {
    const double binsPerHz = static_cast<double>(kWindow) / rateHz_;
    const auto binFrom = [&](double hz) {
        return static_cast<long>(
            std::clamp(std::ceil(hz * binsPerHz), 0.0, static_cast<double>(power_.size())));
    };
    const auto first = power_.begin() + binFrom(fromHz);
    const auto end = power_.begin() + binFrom(toHz);
    if (first >= end) return std::nullopt;
    const double power = *std::max_element(first, end);
    return power > 0.0 ? std::max(10.0 * std::log10(power), kFloorDb) : kFloorDb;
}

}  // namespace tvk::picture
