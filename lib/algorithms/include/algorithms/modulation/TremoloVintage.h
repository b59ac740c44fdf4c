// A tremolo of a rounded square: the sign of the LFO charges and discharges one filter.
//
//   v > 0     y = (1 - pR) + pR y            towards 1, at the release cutoff
//   else      y = pA y                       towards 0, at the attack cutoff
//   out = x + (y g - g) x                    g = t30(level)
//
//   attack cutoff  = rate / ((0.75 - 0.5 duty) 1.414 (0.1 + 0.9 attack))  Hz
//   release cutoff = rate / ((0.25 + 0.5 duty) 1.414 (0.1 + 0.9 release)) Hz,   p = exp(-2 pi cutoff / fs)
//
// Controls glide with a time constant of 20 ms; both channels get the same gain.
//
// Threads: setters from control threads, one at a time; process on the audio thread.
#pragma once

#include <atomic>
#include <vector>

#include "algorithms/modulation/CompositeLfo.h"
#include "math/BlockRamp.h"
#include "math/StandardTaper.h"

class TremoloVintage {
public:
    // blockLength: the samples of every call, at sampleRateHz. Starts at 5.4 Hz, level 0, all else 0.5.
    TremoloVintage(int blockLength, float sampleRateHz);

    // One block; outputs may be the inputs.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // Hz. With init the value is there at once.
    void setRate(float hz, bool init);
    // 0 to 1; beyond that an error in the log, and 0.
    void setLevel(float level, bool init);
    void setDuty(float duty, bool init);
    void setAttack(float attack);
    void setRelease(float release);

    float attackCutoffHz() const;
    float releaseCutoffHz() const;

    // LFO and filters at their start, controls at their targets. Not while a block is processed.
    void reset();

private:
    void designFilters();

    const int blockLength_;
    const float sampleRate_;
    BlockRamp rate_;
    BlockRamp level_;  // behind the taper
    BlockRamp duty_;
    float attack_ = 0.5f;
    float release_ = 0.5f;
    StandardTaper levelTaper_{"t30"};
    std::atomic<float> attackPole_{0.0f};
    std::atomic<float> releasePole_{0.0f};
    CompositeLfo lfo_;
    // Each branch leaves its value in both; they differ only until the first sample.
    float attackState_ = 1.0f;
    float releaseState_ = 0.0f;
    std::vector<float> gains_;
};
