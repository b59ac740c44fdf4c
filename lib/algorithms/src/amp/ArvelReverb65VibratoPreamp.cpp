#include "algorithms/amp/ArvelReverb65VibratoPreamp.h"

#include "Scale.h"
#include "math/StandardTaper.h"
#include "tables/ArvelReverb65Curves.h"

namespace {

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
      stage3_(blockLength, sampleRate, 5.0f, 14.91965f, 222.9328f, tables::kArvelReverb65VibratoStage3) {}

void ArvelReverb65VibratoPreamp::process(float* x) {
    stage1_.process(x);
    scale(x, kAfterStage1, blockLength_);
    tonestack_.process(x);
    scale(x, kAfterTonestack, blockLength_);
    stage2_.process(x);
    // The tank's send stands between these two gains, its return behind the shelf.
    scale(x, kAfterStage2 * kReverbMixer, blockLength_);
    dryShelf_.process(x);
    stage3_.process(x);
    // The vibrato stands between these two gains.
    scale(x, kAfterStage3 * kToMixer, blockLength_);
}

void ArvelReverb65VibratoPreamp::setReverb(float knob) {
    effects_.reverb = knob;
    effects_.reverbLevel = StandardTaper(effects_.reverbTaper == 0 ? "t20" : "t30").calc(knob);
}

void ArvelReverb65VibratoPreamp::setReverbTaper(int index) {
    effects_.reverbTaper = index;
    setReverb(effects_.reverb);
}
