// The average power spectrum of a recording, by Welch's method (Welch, IEEE Trans. Audio Electroacoust.
// 1967): Hann windows of 8192 samples that overlap by half.
//
// Scaled to sines: one of peak 1.0 in the middle of a bin reads 0 dB there.
#pragma once

#include <optional>
#include <vector>

namespace tvk::picture {

class Spectrum {
public:
    static constexpr int kWindow = 8192;

    // A recording shorter than one window is filled up with silence.
    Spectrum(const std::vector<float>& samples, int rateHz);

    // Loudest bin in the band [fromHz, toHz), in dB, silence being -200; nothing for a band without a bin.
    std::optional<double> loudestDb(double fromHz, double toHz) const;

private:
    int rateHz_;
    std::vector<double> power_;
};

}  // namespace tvk::picture
