// Two delayed voices whose delays swing a quarter of a cycle apart: the width of choruses and modulated
// reverbs.
//
//   left  = inLeft   delayed by 23 + 3 depth sin(phase)        ms
//   right = inRight  delayed by 23 + 3 depth sin(phase + 90°)  ms
//
// With full depth a delay runs from 20 to 26 ms. Voices are read between the samples by linear interpolation.
// Rate and depth glide with a time constant of 20 ms.
//
// Threads: setters from control threads, one at a time; process on the audio thread.
#pragma once

#include <vector>

#include "math/BlockRamp.h"
#include "math/FractionalDelay.h"
#include "math/LfoSine.h"

class TwoVoiceModulation {
public:
    // blockLength: the samples of every call, at sampleRateHz. Starts at 0.25 Hz and full depth.
    TwoVoiceModulation(int blockLength, float sampleRateHz);

    // One block, the voices alone. Each output may be its own input; one input for both is apart from them.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // Hz, above 0. With init the value is there at once.
    void setRate(float hz, bool init) { rate_.set(hz, init); }
    // 0 to 1, limited to that.
    void setDepth(float depth, bool init);

    // Silent voices, LFOs at their start, controls at their targets. Not while a block is processed.
    void reset();

private:
    struct Voice {
        Voice(float phaseCycles, float sampleRateHz);
        LfoSine lfo;
        FractionalDelay delay;
    };

    void run(Voice& voice, const float* in, float* out, BlockRamp::Line depth);

    const int blockLength_;
    const float samplesPerMs_;
    BlockRamp rate_;
    BlockRamp depth_;
    Voice left_;
    Voice right_;
    std::vector<float> sines_;
};
