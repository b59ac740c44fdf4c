// A sine through a block process, taken apart into harmonics once it has settled.
#pragma once

#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <vector>

// Amplitudes (peak) of the mean, the fundamental and its harmonics: [0] is the mean, [1] the fundamental.
struct Harmonics {
    std::vector<double> amplitude;
    double rms;  // of the whole wave

    // Everything above the fundamental against the fundamental, a ratio.
    double thd() const {
        double sum = 0.0;
        for (std::size_t h = 2; h < amplitude.size(); ++h)
            sum += amplitude[h] * amplitude[h];
        return std::sqrt(sum) / amplitude[1];
    }
    // Level of a harmonic under the fundamental, dB.
    double db(int harmonic) const {
        return 20.0 * std::log10(amplitude[static_cast<std::size_t>(harmonic)] / amplitude[1]);
    }
};

// Correlates a wave of whole periods with sines at multiples of cyclesPerWindow.
inline Harmonics analyse(const std::vector<float>& wave, int cyclesPerWindow, int highest) {
    Harmonics result{std::vector<double>(static_cast<std::size_t>(highest) + 1), 0.0};
    const double size = static_cast<double>(wave.size());
    for (int h = 0; h <= highest; ++h) {
        std::complex<double> sum = 0.0;
        for (std::size_t n = 0; n < wave.size(); ++n) {
            const double phase =
                2.0 * std::numbers::pi * std::fmod(double(h) * cyclesPerWindow * double(n), size) / size;
            sum += double(wave[n]) * std::polar(1.0, -phase);
        }
        result.amplitude[static_cast<std::size_t>(h)] = std::abs(sum) * (h == 0 ? 1.0 : 2.0) / size;
    }
    double power = 0.0;
    for (const float x : wave)
        power += double(x) * x;
    result.rms = std::sqrt(power / size);
    return result;
}

// process takes a block of 32 samples in place. The sine has cyclesPerWindow whole periods in a window of
// window samples (a multiple of 32), and the last window of settleWindows + 1 is analysed.
inline Harmonics probe(const std::function<void(float*)>& process, double peak, int cyclesPerWindow,
                       int window, int settleWindows, int highest = 5) {
    constexpr int kBlock = 32;
    std::vector<float> wave;
    for (int start = 0; start < window * (settleWindows + 1); start += kBlock) {
        float block[kBlock];
        for (int n = 0; n < kBlock; ++n) {
            const double turns = std::fmod(double(cyclesPerWindow) * (start + n), window) / window;
            block[n] = static_cast<float>(peak * std::sin(2.0 * std::numbers::pi * turns));
        }
        process(block);
        if (start >= window * settleWindows) wave.insert(wave.end(), block, block + kBlock);
    }
    return analyse(wave, cyclesPerWindow, highest);
}
