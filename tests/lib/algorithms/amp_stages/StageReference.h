// What the stages should give, computed sample by sample in double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <random>
#include <stdexcept>
#include <vector>

#include "tables/ArvelReverb65Curves.h"
#include "tables/OversamplingFirs.h"
#include "tables/ValveCurve.h"

namespace stage_reference {

constexpr double kTurn = 2.0 * std::numbers::pi;
using Signal = std::vector<float>;

// The segment that the comparison tree ends at.
inline int treeSegment(const tables::ValveCurve& curve, float x) {
    const float(&b)[7] = curve.breakpoints;
    if (b[3] < x) {
        if (b[5] < x) return b[6] < x ? 7 : 6;
        return b[4] < x ? 5 : 4;
    }
    if (b[1] < x) return b[2] < x ? 3 : 2;
    return b[0] < x ? 1 : 0;
}

struct Transfer {
    const tables::ValveCurve& curve;
    double inputRange;
    double outputMin;
    double outputMax;
    bool keepsRest = false;

    double volts(float in) const {
        const float x = std::clamp(in / static_cast<float>(inputRange), -1.0f, 1.0f);
        const float(&s)[4] = curve.segments[treeSegment(curve, x)];
        const double y = ((double{s[0]} * x + s[1]) * x + s[2]) * x + s[3];
        const double half = (outputMax - outputMin) * 0.5;
        return half + y * half + outputMin;
    }
    double rest() const { return volts(0.0f); }
    double operator()(float in) const { return volts(in) - (keepsRest ? 0.0 : rest()); }
};

// All curves of the amp with their limits.
inline std::vector<Transfer> ampTransfers() {
    using namespace tables;
    return {
        {kArvelReverb65NormalStage1, 10, 100.1697f, 300.4954f},
        {kArvelReverb65NormalStage2, 5, 120.0555f, 367.8339f},
        {kArvelReverb65VibratoStage1, 10, 100.1697f, 300.4954f},
        {kArvelReverb65VibratoStage2, 5, 120.0555f, 367.8339f},
        {kArvelReverb65VibratoStage3, 5, 14.91965f, 222.9328f},
        {kArvelReverb65PhaseInverterA, 10, 119.4794f, 366.59479f},
        {kArvelReverb65PhaseInverterB, 10, 106.0296f, 358.5621f},
        {kArvelReverb65OutputValveA, 50, -18.85376f, -0.09345604f, true},
        {kArvelReverb65OutputValveB, 50, 0.08957769f, 18.84547f, true},
        {kOutputSoftClip, 1, -1, 1},
    };
}

// Hold, up filter, transfer, down filter, every rate-th sample.
inline std::vector<double> oversampled(const Signal& in, int rate, int length, const Transfer& transfer) {
    const auto* pair =
        std::find_if(std::begin(tables::kOversamplingFirs), std::end(tables::kOversamplingFirs),
                     [&](const auto& p) { return p.rate == rate && p.length == length; });
    if (pair == std::end(tables::kOversamplingFirs)) throw std::logic_error("no such filter");
    const auto step = static_cast<std::size_t>(rate);
    const std::size_t taps = step * static_cast<std::size_t>(length);
    std::vector<double> high(in.size() * step);
    for (std::size_t m = 0; m < high.size(); ++m) {
        double up = 0.0;
        for (std::size_t j = 0; j < taps && j <= m; ++j)
            up += double{pair->up[j]} * in[(m - j) / step];
        high[m] = transfer(static_cast<float>(up));
    }
    std::vector<double> out(in.size());
    for (std::size_t n = 0; n < out.size(); ++n) {
        for (std::size_t j = 0; j < taps && j <= n * step; ++j)
            out[n] += double{pair->down[j]} * high[n * step - j];
    }
    return out;
}

// c = 1 - exp(-2 pi f / fs); s = s + (x - s) c; y = x - s.
inline void highPass(std::vector<double>& x, double cornerHz, double rateHz) {
    const double c = 1.0 - std::exp(-kTurn * cornerHz / rateHz);
    double s = 0.0;
    for (double& sample : x) {
        s += (sample - s) * c;
        sample -= s;
    }
}

inline Signal noise(std::size_t count, float peak) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> uniform(-peak, peak);
    Signal samples(count);
    for (float& x : samples)
        x = uniform(random);
    return samples;
}

inline Signal sine(double frequencyHz, double peak, std::size_t count, double rateHz = 44100.0) {
    Signal samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] =
            static_cast<float>(peak * std::sin(kTurn * frequencyHz * static_cast<double>(n) / rateHz));
    return samples;
}

// Complex amplitude of a frequency that has whole periods in the samples.
inline std::complex<double> tone(const float* x, std::size_t count, double frequencyHz,
                                 double rateHz = 44100.0) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < count; ++n)
        sum += double{x[n]} * std::polar(1.0, -kTurn * frequencyHz * static_cast<double>(n) / rateHz);
    return 2.0 * sum / static_cast<double>(count);
}

inline double decibel(double ratio) {
    return 20.0 * std::log10(std::max(ratio, 1e-15));
}

// The signal through a stage in place, block by block; its length is a multiple of the block's.
template <typename Stage>
Signal through(Stage& stage, Signal signal, int block) {
    for (std::size_t n = 0; n < signal.size(); n += static_cast<std::size_t>(block))
        stage.process(&signal[n]);
    return signal;
}

}  // namespace stage_reference
