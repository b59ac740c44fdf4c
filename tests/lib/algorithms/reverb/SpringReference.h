// The algorithmic tank sample by sample in double precision, with plain rings and no pipelines.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "algorithms/reverb/SpringVoicing.h"

namespace spring_reference {

using Block = std::vector<double>;

// The ring with a read index a tap.
struct TapLine {
    TapLine(const float* tapMs, int taps, float maxMs, double fs) {
        const double longest = std::ceil(double{maxMs} * fs * 0.001);
        line.assign(static_cast<std::size_t>(longest) + 3, 0.0);
        for (int k = 0; k < taps; ++k) {
            const double x = double{tapMs[k]} * 0.001 * fs;
            read.push_back(static_cast<std::size_t>(longest - std::ceil(x)));
            weight.push_back(1.0 - std::ceil(x) + x);
        }
    }
    double tap(std::size_t k) const {
        const double before = line[read[k]], later = line[(read[k] + 1) % line.size()];
        return before * (1.0 - weight[k]) + later * weight[k];
    }
    void put(double sample) {
        line[write] = sample;
        write = (write + 1) % line.size();
        for (auto& index : read)
            index = (index + 1) % line.size();
    }
    std::vector<double> line;
    std::vector<std::size_t> read;
    std::vector<double> weight;
    std::size_t write = 0;
};

struct Section {
    double s0 = 0.0, s1 = 0.0;
    double run(const BiquadCoefficients<float>& c, double x) {
        const double w = x - c.a1 * s0 - c.a2 * s1;
        const double y = c.b2 * s1 + c.b1 * s0 + c.b0 * w;
        s1 = s0;
        s0 = w;
        return y;
    }
};

struct Shelf {
    double b0, b1, a1, x1 = 0.0, y1 = 0.0;
    Shelf(const rvb::SpringVoicing::Shelf& values, double fs) {
        const double pi = std::numbers::pi, a = std::pow(10.0, values.lowDb / 20.0),
                     b = std::pow(10.0, values.highDb / 20.0);
        const double x = (b * b - a * a) / (b * b + a * a - 2.0 * a * b);
        const double p = x - (x < 0.0 ? -1.0 : 1.0) * std::sqrt(x * x - 1.0);
        const double t = std::sin(pi / 2.0 * values.frequencyHz / fs - pi / 4.0) /
                         std::sin(pi / 2.0 * values.frequencyHz / fs + pi / 4.0);
        const double n = 1.0 / (1.0 + p * t);
        const double u = (a + b + p * (a - b)) / 2.0, v = (a - b + p * (a + b)) / 2.0;
        b0 = (u + v * t) * n, b1 = (v + u * t) * n, a1 = (p + t) * n;
    }
    double run(double x) {
        const double y = b0 * x + b1 * x1 - a1 * y1;
        x1 = x;
        y1 = y;
        return y;
    }
};

// The cookbook's peak (R. Bristow-Johnson).
inline BiquadCoefficients<double> peak(const rvb::SpringVoicing::Peak& values, double fs) {
    const double a = std::pow(10.0, values.gainDb / 40.0),
                 w = 2.0 * std::numbers::pi * values.frequencyHz / fs;
    const double alpha = std::sin(w) / (2.0 * values.q), a0 = 1.0 + alpha / a;
    return {-2.0 * std::cos(w) / a0, (1.0 - alpha / a) / a0, (1.0 - alpha * a) / a0, -2.0 * std::cos(w) / a0,
            (1.0 + alpha * a) / a0};
}

struct Ring {
    explicit Ring(double samples) : line(static_cast<std::size_t>(samples), 0.0) {}
    std::vector<double> line;
    std::size_t k = 0;
    double store = 0.0;
    void turn() { k = (k + 1) % line.size(); }
};

// Levels and controls at rest: gains are set before the first block.
struct Tank {
    Tank(const rvb::SpringVoicing& v, int block, double fs)
        : voicing(v),
          rate(fs),
          inputGain(v.dwellMin),
          feedback(v.combs[0].feedback),
          dampingHz(v.combs[0].dampingHz),
          toneHz(v.toneMinHz),
          wet(v.outputWeights.second),
          dry(v.outputWeights.first),
          early(v.earlyTapMs, 6, v.earlyMaxMs, fs),
          loop(&v.loopTapMs, 1, v.loopMaxMs, fs),
          peakFilter(peak(v.inputPeak, fs)),
          shelf1(v.firstShelf, fs),
          shelf2(v.secondShelf, fs),
          loopOut(static_cast<std::size_t>(block), 0.0) {
        for (const auto& comb : v.combs)
            combs.emplace_back(std::floor(double{comb.delayMs} * 0.001 * fs));
        for (const auto& allpass : v.allpasses)
            allpasses.emplace_back(std::floor(double{allpass.delayMs} * 0.001 * fs));
    }

    void process(Block& left, Block& right) {
        const double d = std::exp(-2.0 * std::numbers::pi * dampingHz / rate),
                     p = std::exp(-2.0 * std::numbers::pi * toneHz / rate);
        for (std::size_t i = 0; i < left.size(); ++i) {
            double a = (left[i] + right[i]) * inputGain;
            const double w = a - peakFilter.a1 * peak0 - peakFilter.a2 * peak1;
            a = peakFilter.b2 * peak1 + peakFilter.b1 * peak0 + peakFilter.b0 * w;
            peak1 = peak0;
            peak0 = w;
            double reflected = 0.0;
            for (std::size_t k = 0; k < 6; ++k)
                reflected += voicing.earlyTapGains[k] * early.tap(k);
            early.put(a + reflected * voicing.earlyFeedback);
            const double f = a * voicing.combInputGain;
            double b = loopOut[i] * voicing.loopFeedback;
            for (std::size_t k = 0; k < 4; ++k)
                a = fixed[k].run(voicing.fixedFilters[k], a);
            for (std::size_t k = 0; k < 30; ++k)
                b = dispersion[k].run(voicing.dispersion[k], b);
            const double c = loop.tap(0) * voicing.loopTapGain;
            loop.put(a + b + c * voicing.loopDelayFeedback);
            loopOut[i] = c;

            double e = 0.0;
            for (Ring& comb : combs) {
                const double out = comb.line[comb.k];
                e += out;
                comb.store = out * (1.0 - d) + comb.store * d;
                comb.line[comb.k] = f + comb.store * feedback;
                comb.turn();
            }
            for (std::size_t k = 0; k < 4; ++k) {
                const double v = allpasses[k].line[allpasses[k].k];
                allpasses[k].line[allpasses[k].k] = e + v * voicing.allpasses[k].backGain;
                e = v + e * voicing.allpasses[k].forwardGain;
                allpasses[k].turn();
            }
            e = shelf1.run(e);
            e = voicing.earlyWeights.second * e + voicing.earlyWeights.first * reflected;
            e = voicing.lateWeights.second * e + voicing.lateWeights.first * c;
            e = shelf2.run(e);
            tone = (1.0 - p) * e + p * tone;
            left[i] = wet * tone + dry * left[i];
            right[i] = wet * tone + dry * right[i];
        }
    }

    const rvb::SpringVoicing& voicing;
    double rate, inputGain, feedback, dampingHz, toneHz, wet, dry;
    TapLine early, loop;
    BiquadCoefficients<double> peakFilter;
    double peak0 = 0.0, peak1 = 0.0, tone = 0.0;
    Section fixed[4], dispersion[30];
    std::vector<Ring> combs, allpasses;
    Shelf shelf1, shelf2;
    Block loopOut;
};

}  // namespace spring_reference
