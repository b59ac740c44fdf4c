#include "algorithms/amp/ArvelReverb65VibratoPreamp.h"

#include "Scale.h"
#include "algorithms/reverb/SpringTankResponse.h"
#include "math/StandardTaper.h"
#include "tables/ArvelReverb65Curves.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "ArvelReverb65VibratoPreamp";

// Gains of the linear network between the valves.
constexpr float kAfterStage1 = 1.2589254f;
constexpr float kAfterTonestack = 1.2735031f;
constexpr float kAfterStage2 = 1.1168633f;
constexpr float kReverbMixer = 0.04050419f;
constexpr float kAfterStage3 = 1.0839269f;
constexpr float kToMixer = 0.51582217f;

}  // namespace

ArvelReverb65VibratoPreamp::ArvelReverb65VibratoPreamp(int blockLength, float sampleRate)
    : blockLength_(blockLength),
      stage1_(blockLength, sampleRate, 10.0f, 100.1697f, 300.4954f, tables::kArvelReverb65VibratoStage1),
      tonestack_(blockLength, sampleRate),
      stage2_(blockLength, sampleRate, 5.0f, 120.0555f, 367.8339f, tables::kArvelReverb65VibratoStage2),
      dryShelf_(blockLength, sampleRate, 0.0f, 5.0f, 5000.0f),
      returnFilter_(10000.0f, sampleRate),
      stage3_(blockLength, sampleRate, 5.0f, 14.91965f, 222.9328f, tables::kArvelReverb65VibratoStage3),
      tremolo_(blockLength, sampleRate, OpticalTremoloCell::kArvelReverb65Ranges),
      returnBuffer_(static_cast<std::size_t>(blockLength)),
      reverb_(blockLength, sampleRate, SpringTankResponse::get(sampleRate)),
      handover_(blockLength),
      reverbThread_(reverb_, handover_, blockLength, sampleRate) {
    setSpeed(0.0f, true);
    setIntensity(0.0f, true);
}

void ArvelReverb65VibratoPreamp::process(float* x) {
    stage1_.process(x);
    scale(x, kAfterStage1, blockLength_);
    tonestack_.process(x);
    scale(x, kAfterTonestack, blockLength_);
    stage2_.process(x);
    scale(x, kAfterStage2, blockLength_);
    handover_.exchange(x, returnBuffer_.data());
    scale(x, kReverbMixer, blockLength_);
    dryShelf_.process(x);
    returnFilter_.process(returnBuffer_.data(), blockLength_);
    for (int n = 0; n < blockLength_; ++n)
        x[n] += returnBuffer_[static_cast<std::size_t>(n)];
    stage3_.process(x);
    scale(x, kAfterStage3, blockLength_);
    tremolo_.process(x);
    scale(x, kToMixer, blockLength_);
}

void ArvelReverb65VibratoPreamp::setReverb(float knob, bool isInit) {
    reverbKnob_ = knob;
    reverb_.setLevel(StandardTaper(reverbTaper_ == 0 ? "t20" : "t30").calc(knob), isInit);
}

void ArvelReverb65VibratoPreamp::setReverbMute(bool on, bool isInit) {
    tvk::log::debug(kTag, "Reverb Mute: %s", on ? "true" : "false");
    reverb_.setMute(on, isInit);
}

void ArvelReverb65VibratoPreamp::setReverbTaper(int index) {
    tvk::log::debug(kTag, "Reverb Type: %d", index);
    reverbTaper_ = index;
    setReverb(reverbKnob_, false);
}
