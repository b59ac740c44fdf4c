#include "algorithms/amp/ArvelReverb65ImpedanceCurve.h"

#include <cmath>
#include <numbers>

#include "math/BqHighShelf.h"
#include "math/BqPeak.h"
#include "utility/Multiversion.h"

namespace {

using Coefficients = ArvelReverb65ImpedanceCurve::Coefficients;
using State = ArvelReverb65ImpedanceCurve::State;
constexpr int kSections = ArvelReverb65ImpedanceCurve::kSections;

constexpr double kHighPassHz = 20.0;
constexpr float kDamping = 1.0f / 0.71f;
constexpr double kTrimDb = -1.0;

Coefficients design(float sampleRate) {
    return {static_cast<float>(2.0 * std::sin(std::numbers::pi * kHighPassHz / sampleRate)),
            kDamping,
            static_cast<float>(std::pow(10.0, kTrimDb * 0.05)),
            {BqPeak(6.9f, 74.5f, 1.5f, sampleRate).coefficients(),
             BqPeak(0.5f, 225.0f, 1.75f, sampleRate).coefficients(),
             BqPeak(-0.9f, 500.0f, 0.7f, sampleRate).coefficients(),
             BqPeak(-0.25f, 6000.0f, 1.0f, sampleRate).coefficients(),
             BqHighShelf(7.0f, 850.0f, 0.7f, sampleRate).coefficients()}};
}

TARVEK_MULTIVERSION
void run(const Coefficients& coefficients, State& state, float* buffer, int length) {
    const Coefficients c = coefficients;
    State s = state;
    for (int n = 0; n < length; ++n) {
        const float high = (buffer[n] - s.low) - c.damping * s.band;
        s.band += c.f * high;
        s.low += c.f * s.band;
        float x = high;
#pragma GCC unroll 5
        for (int i = 0; i < kSections; ++i) {
            const BiquadCoefficients<float>& q = c.sections[i];
            BiquadState<float>& z = s.sections[i];
            const float w = (x - q.a2 * z.w2) - q.a1 * z.w1;
            x = q.b0 * w + (q.b1 * z.w1 + q.b2 * z.w2);
            z.w2 = z.w1;
            z.w1 = w;
        }
        buffer[n] = x * c.gain;
    }
    state = s;
}

}  // namespace

ArvelReverb65ImpedanceCurve::ArvelReverb65ImpedanceCurve(int length, float sampleRate)
    : length_(length), coefficients_(design(sampleRate)) {}

void ArvelReverb65ImpedanceCurve::process(float* buffer) {
    run(coefficients_, state_, buffer, length_);
}
