#include "algorithms/modulation/TwoVoiceModulation.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kControlSeconds = 0.02f;
constexpr float kFirstHz = 0.25f;
constexpr float kCentreMs = 23.0f;
constexpr float kSwingMs = 3.0f;
constexpr float kRightVoiceCycles = 0.25f;

}  // namespace

TwoVoiceModulation::Voice::Voice(float phaseCycles, float sampleRateHz)
    : lfo(kFirstHz, sampleRateHz),
      delay(static_cast<int>(std::ceil((kCentreMs + kSwingMs) * 0.001f * sampleRateHz)) + 1) {
    lfo.setPhase(phaseCycles);
}

TwoVoiceModulation::TwoVoiceModulation(int blockLength, float sampleRateHz)
    : blockLength_(blockLength),
      samplesPerMs_(0.001f * sampleRateHz),
      rate_(kControlSeconds, sampleRateHz, blockLength),
      depth_(kControlSeconds, sampleRateHz, blockLength),
      left_(0.0f, sampleRateHz),
      right_(kRightVoiceCycles, sampleRateHz),
      sines_(static_cast<std::size_t>(blockLength), 0.0f) {
    rate_.snap(kFirstHz);
    depth_.snap(1.0f);
}

void TwoVoiceModulation::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight) {
    const float rate = rate_.nextValue();
    left_.lfo.setFrequency(rate);
    right_.lfo.setFrequency(rate);
    const BlockRamp::Line depth = depth_.next();
    run(left_, inLeft, outLeft, depth);
    run(right_, inRight, outRight, depth);
}

void TwoVoiceModulation::run(Voice& voice, const float* in, float* out, BlockRamp::Line depth) {
    voice.lfo.tick(sines_.data(), blockLength_);
    for (int n = 0; n < blockLength_; ++n) {
        const float delayMs = kCentreMs + kSwingMs * depth.at(n) * sines_[n];
        out[n] = voice.delay.process(in[n], static_cast<double>(delayMs * samplesPerMs_));
    }
}

void TwoVoiceModulation::setDepth(float depth, bool init) {
    depth_.set(depth > 0.0f ? std::min(depth, 1.0f) : 0.0f, init);
}

void TwoVoiceModulation::reset() {
    rate_.snapToTarget();
    depth_.snapToTarget();
    for (Voice* voice : {&left_, &right_}) {
        voice->lfo.reset();
        voice->delay.clear();
    }
}
