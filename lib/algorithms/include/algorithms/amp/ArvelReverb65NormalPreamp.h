// The normal channel of the two-channel reverb amp: two valves around the tone stack. Volts in, volts out; 20
// samples of delay.
//
//   in -> valve 1 -> x 1.277 -> bright switch, tone circuit -> x 1.259 -> valve 2 -> x 1.122 -> x 0.507 ->
//   out
#pragma once

#include "algorithms/amp/ArvelReverb65Tonestack.h"
#include "algorithms/amp/ValveStage.h"

class ArvelReverb65NormalPreamp {
public:
    // blockLength: samples per call, at sampleRate (Hz).
    ArvelReverb65NormalPreamp(int blockLength, float sampleRate);

    // One block in place. Audio thread.
    void process(float* x);

    // The controls.
    ArvelReverb65Tonestack& tonestack() { return tonestack_; }

private:
    const int blockLength_;
    ValveStage stage1_;
    ArvelReverb65NormalTonestack tonestack_;
    ValveStage stage2_;
};
