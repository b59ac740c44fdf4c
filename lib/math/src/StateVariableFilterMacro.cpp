#include "math/StateVariableFilterMacro.h"

#include <cmath>

#include "utility/Log.h"

namespace {

constexpr float kPi = 3.1415927f;
constexpr float kTwoPi = 6.2831855f;

}  // namespace

StateVariableFilterMacro::StateVariableFilterMacro(int channels, int oversampling, Mode mode,
                                                   float sampleRate, float freqHz, float q)
    : oversampling_(oversampling),
      mode_(mode),
      sampleRate_(sampleRate),
      states_(static_cast<size_t>(channels)),
      coefficients_({0.5f, 0.5f, std::sqrt(0.5f)}) {
    setAll(freqHz, q);
}

void StateVariableFilterMacro::process(int channel, float* buffer, int n) {
    const Coefficients coefficients = coefficients_.read();
    State& state = states_[static_cast<size_t>(channel)];
    switch (mode_) {
        case Mode::LowPass:
            return run<Mode::LowPass>(coefficients, state, buffer, n);
        case Mode::BandPass:
            return run<Mode::BandPass>(coefficients, state, buffer, n);
        case Mode::HighPass:
            return run<Mode::HighPass>(coefficients, state, buffer, n);
    }
}

template <StateVariableFilterMacro::Mode mode>
void StateVariableFilterMacro::run(const Coefficients& c, State& state, float* buffer, int n) const {
    float low = state.low;
    float band = state.band;
    for (int i = 0; i < n; ++i) {
        const float x = c.gain * buffer[i];
        float high = 0.0f;
        for (int step = 0; step < oversampling_; ++step) {
            low += c.f * band;
            high = x - low - c.d * band;
            band += c.f * high;
        }
        if constexpr (mode == Mode::LowPass) buffer[i] = low;
        if constexpr (mode == Mode::BandPass) buffer[i] = band;
        if constexpr (mode == Mode::HighPass) buffer[i] = high;
    }
    state = {low, band};
}

void StateVariableFilterMacro::setFrequency(float freqHz) {
    Coefficients next = coefficients_.latest();
    next.f = frequencyTerm(freqHz);
    coefficients_.publish(next);
}

void StateVariableFilterMacro::setQ(float q) {
    if (!isDampingInRange(q)) return;
    const float d = 1.0f / q;
    coefficients_.publish({coefficients_.latest().f, d, std::sqrt(d)});
}

void StateVariableFilterMacro::setAll(float freqHz, float q) {
    if (!isDampingInRange(q)) return;
    const float d = 1.0f / q;
    coefficients_.publish({frequencyTerm(freqHz), d, std::sqrt(d)});
}

void StateVariableFilterMacro::clear() {
    for (State& state : states_)
        state = {};
}

float StateVariableFilterMacro::approximateSine(float x) {
    const float wrapped = x - kTwoPi * std::floor((x + kPi) / kTwoPi);
    const float y = 1.2732395f * wrapped - 0.40528473f * wrapped * std::abs(wrapped);
    return (0.77633023f + std::copysign(0.2230851f, wrapped) * y) * y;
}

float StateVariableFilterMacro::frequencyTerm(float freqHz) const {
    return 2.0f * approximateSine(kPi * freqHz / (sampleRate_ * static_cast<float>(oversampling_)));
}

bool StateVariableFilterMacro::isDampingInRange(float q) {
    if (q > 0.0f && 1.0f / q <= 2.0f) return true;
    TVK_ERROR("Q outside of range error.");
    return false;
}
