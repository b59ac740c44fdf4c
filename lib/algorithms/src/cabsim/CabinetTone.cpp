#include "algorithms/cabsim/CabinetTone.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kRampSeconds = 0.01f;
constexpr float kQ = 0.7071f;
constexpr float kOpenHpfHz = 20.0f;
constexpr float kOpenLpfHz = 20000.0f;
constexpr float kLeastHz = 1.0f;

void move(OnePoleRamp& ramp, float target, bool isInit) {
    if (!std::isfinite(target)) return;
    ramp.setTarget(target);
    if (isInit) ramp.snap(target);
}

// One sample of a frequency's way; the filter is designed only while it moves.
template <typename Filter>
void step(OnePoleRamp& ramp, Filter& filter) {
    if (!ramp.isAtRest()) filter.setFrequency(ramp.tick());
}

// n samples of it, heard at their end alone.
template <typename Filter>
void skip(OnePoleRamp& ramp, Filter& filter, int n) {
    if (ramp.isAtRest()) return;
    for (int i = 0; i < n; ++i)
        ramp.tick();
    filter.setFrequency(ramp.current());
}

}  // namespace

CabinetTone::CabinetTone(float sampleRate)
    : level_(kRampSeconds, sampleRate),
      hpfFreqRamp_(kRampSeconds, sampleRate),
      lpfFreqRamp_(kRampSeconds, sampleRate),
      highPass_(0.0f, kOpenHpfHz, kQ, sampleRate),
      lowPass_(0.0f, kOpenLpfHz, kQ, sampleRate) {
    setHPF(kOpenHpfHz, true);
    setLPF(kOpenLpfHz, true);
    setOutputLevel(0.0f, true);
}

void CabinetTone::setHPF(float hz, bool isInit) {
    move(hpfFreqRamp_, std::max(hz, kLeastHz), isInit);
}

void CabinetTone::setLPF(float hz, bool isInit) {
    move(lpfFreqRamp_, std::max(hz, kLeastHz), isInit);
}

void CabinetTone::setOutputLevel(float db, bool isInit) {
    move(level_, std::pow(10.0f, db * 0.05f), isInit);
}

void CabinetTone::process(float* buffer, int n) {
    filter(buffer, n);
    if (level_.isAtRest()) {
        const float gain = level_.current();
        for (int i = 0; i < n; ++i)
            buffer[i] *= gain;
        return;
    }
    for (int i = 0; i < n; ++i)
        buffer[i] *= level_.tick();
}

void CabinetTone::filter(float* buffer, int n) {
    if (hpfFreqRamp_.isAtRest() && lpfFreqRamp_.isAtRest()) {
        lowPass_.process(buffer, n);
        highPass_.process(buffer, n);
        return;
    }
    for (int i = 0; i < n; ++i) {
        step(lpfFreqRamp_, lowPass_);
        step(hpfFreqRamp_, highPass_);
        buffer[i] = highPass_.process(lowPass_.process(buffer[i]));
    }
}

void CabinetTone::follow(int n) {
    skip(lpfFreqRamp_, lowPass_, n);
    skip(hpfFreqRamp_, highPass_, n);
    lowPass_.clear();
    highPass_.clear();
}
