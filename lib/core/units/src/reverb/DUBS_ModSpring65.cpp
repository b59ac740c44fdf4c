#include "core/units/reverb/DUBS_ModSpring65.h"

#include <utility>

DUBS_ModSpring65::DUBS_ModSpring65(std::string tarvekId, int blockLength, float sampleRate)
    : SpringUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_ModSpring65", rvb::kSpringVoicing65,
                 {"wetLvl", 0.5f, 0.54444f, 0.28889f, 1.0f, 0.5f}),
      voices_(blockLength, sampleRate),
      left_(static_cast<std::size_t>(blockLength)),
      right_(static_cast<std::size_t>(blockLength)) {
    addControl("rateHz", "Rate", 0.1f, [this](float hz, bool isInit) { voices_.setRate(hz, isInit); });
    addControl("depth", "Depth", 0.25f, [this](float v, bool isInit) { voices_.setDepth(v, isInit); });
}

void DUBS_ModSpring65::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    const int n = getBlockLength();
    const float* reverb = tank_.reverberate(inLeft, inRight, n);
    voices_.process(reverb, reverb, left_.data(), right_.data());
    tank_.mix(left_.data(), right_.data(), outLeft, outRight, n);
    for (int i = 0; i < n; ++i) {
        outLeft[i] *= gain_;
        outRight[i] *= gain_;
    }
}

void DUBS_ModSpring65::reset() {
    SpringUnit::reset();
    voices_.reset();
}
