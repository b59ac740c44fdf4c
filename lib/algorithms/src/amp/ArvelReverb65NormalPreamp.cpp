#include "algorithms/amp/ArvelReverb65NormalPreamp.h"

#include "Scale.h"
#include "tables/ArvelReverb65Curves.h"

namespace {

// Gains of the linear network between the valves.
constexpr float kAfterStage1 = 1.276865f;
constexpr float kAfterTonestack = 1.2589254f;
constexpr float kAfterStage2 = 1.1220184f;
constexpr float kToMixer = 0.50699067f;

}  // namespace

ArvelReverb65NormalPreamp::ArvelReverb65NormalPreamp(int blockLength, float sampleRate)
    : blockLength_(blockLength),
      stage1_(blockLength, sampleRate, 10.0f, 100.1697f, 300.4954f, tables::kArvelReverb65NormalStage1),
      tonestack_(blockLength, sampleRate),
      stage2_(blockLength, sampleRate, 5.0f, 120.0555f, 367.8339f, tables::kArvelReverb65NormalStage2) {}

void ArvelReverb65NormalPreamp::process(float* x) {
    stage1_.process(x);
    scale(x, kAfterStage1, blockLength_);
    tonestack_.process(x);
    scale(x, kAfterTonestack, blockLength_);
    stage2_.process(x);
    scale(x, kAfterStage2 * kToMixer, blockLength_);
}
