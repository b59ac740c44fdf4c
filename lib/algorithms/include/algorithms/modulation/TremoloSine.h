// A tremolo of a bent sine, with a flat top by clipping.
//
//   v = LFO, 0 to 1;   u = (clip + 1) v;   gain = 1 if u > 1, else 1 - g + g u,   g = t30(level)
//
// Controls glide with a time constant of 20 ms; both channels get the same gain.
//
// Threads: setters from control threads, one at a time; process on the audio thread.
#pragma once

#include <vector>

#include "algorithms/modulation/CompositeLfo.h"
#include "math/BlockRamp.h"
#include "math/OnePoleRamp.h"
#include "math/StandardTaper.h"

class TremoloSine {
public:
    // blockLength: the samples of every call, at sampleRateHz. Starts at 5.4 Hz, duty and dist 0.5, level and
    // clip 0.
    TremoloSine(int blockLength, float sampleRateHz);

    // One block; outputs may be the inputs.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // Hz, limited to 1.3 to 10. With init the value is there at once.
    void setRate(float hz, bool init);
    // 0 to 1; beyond that an error in the log, and 0.
    void setLevel(float level, bool init);
    void setDuty(float duty, bool init);
    // The second phase offset of the LFO's duty oscillator.
    void setDist(float dist, bool init);
    void setClip(float clip, bool init);

    // LFO at its start, controls at their targets. Not while a block is processed.
    void reset();

private:
    void runLfo(float* out);

    const int blockLength_;
    OnePoleRamp rate_;
    BlockRamp level_;  // behind the taper
    BlockRamp duty_;
    BlockRamp dist_;
    BlockRamp clip_;
    StandardTaper levelTaper_{"t30"};
    CompositeLfo lfo_;
    std::vector<float> gains_;
};
