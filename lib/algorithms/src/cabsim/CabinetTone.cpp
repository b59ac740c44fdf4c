#include "algorithms/cabsim/CabinetTone.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kRampSeconds = 0.01f;
constexpr float kQ = 0.7071f;
constexpr float kOpenHpfHz = 20.0f;
constexpr float kOpenLpfHz = 20000.0f;
constexpr float kLeastHz = 1.0f;

}  // namespace

CabinetTone::CabinetTone(float sampleRate)
    : level_(kRampSeconds, sampleRate),
      highPass_(0.0f, kOpenHpfHz, kQ, sampleRate),
      lowPass_(0.0f, kOpenLpfHz, kQ, sampleRate),
      hpfFreqRamp_(kRampSeconds, sampleRate, highPass_),
      lpfFreqRamp_(kRampSeconds, sampleRate, lowPass_) {
    setHPF(kOpenHpfHz, true);
    setLPF(kOpenLpfHz, true);
    setOutputLevel(0.0f, true);
}

void CabinetTone::setHPF(float hz, bool isInit) {
    hpfFreqRamp_.setTarget(std::max(hz, kLeastHz), isInit);
}

void CabinetTone::setLPF(float hz, bool isInit) {
    lpfFreqRamp_.setTarget(std::max(hz, kLeastHz), isInit);
}

void CabinetTone::setOutputLevel(float db, bool isInit) {
    const float gain = std::pow(10.0f, db * 0.05f);
    if (!std::isfinite(gain)) return;
    level_.setTarget(gain);
    if (isInit) level_.snap(gain);
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
        lpfFreqRamp_.step();
        hpfFreqRamp_.step();
        buffer[i] = highPass_.process(lowPass_.process(buffer[i]));
    }
}

void CabinetTone::follow(int n) {
    lpfFreqRamp_.skip(n);
    hpfFreqRamp_.skip(n);
    lowPass_.clear();
    highPass_.clear();
}
