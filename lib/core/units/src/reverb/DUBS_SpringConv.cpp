#include "core/units/reverb/DUBS_SpringConv.h"

#include <cmath>
#include <utility>

#include "algorithms/reverb/SpringTankResponse.h"
#include "core/units/reverb/SpringKnobs.h"

namespace {

constexpr float kRampSeconds = 0.02f;
constexpr float kResponseGain = 0.2f;
constexpr int kTailCpu = 3;
constexpr const char* kTailThreadName = "SpringConvTail";

float gainOf(float db) {
    return std::pow(10.0f, db * 0.05f);
}

}  // namespace

DUBS_SpringConv::DUBS_SpringConv(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_SpringConv"),
      left_(gainOf(spring::kDryLevelDb), 0.0f, kRampSeconds, sampleRate),
      right_(gainOf(spring::kDryLevelDb), 0.0f, kRampSeconds, sampleRate),
      mono_(static_cast<std::size_t>(blockLength)),
      wet_(static_cast<std::size_t>(blockLength)) {
    if (auto response = SpringTankResponse::get(sampleRate))
        convolver_.emplace(blockLength, std::move(response), kTailCpu, kTailThreadName, sampleRate);
    addControl("wetLvl", "Level", 0.5f, [this](float knob, bool isInit) {
        const float gain = gainOf(spring::levelDb(knob)) * kResponseGain;
        left_.setSecond(gain, isInit);
        right_.setSecond(gain, isInit);
    });
}

void DUBS_SpringConv::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    const int n = getBlockLength();
    for (int i = 0; i < n; ++i)
        mono_[static_cast<std::size_t>(i)] = 0.5f * (inLeft[i] + inRight[i]);
    if (convolver_) convolver_->process(mono_.data(), wet_.data(), n);
    left_.process(inLeft, wet_.data(), outLeft, n);
    right_.process(inRight, wet_.data(), outRight, n);
}
