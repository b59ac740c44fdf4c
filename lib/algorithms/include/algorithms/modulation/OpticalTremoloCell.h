// The photocell vibrato of a valve amp: a sine lights a neon lamp, the lamp steers a photoresistor, and that
// shunts the signal.
//
//   speed x --> rate, threshold, slope, lamp floor, falling time
//   sine --> lit = sine > threshold --> lamp envelope e, 0 to 1
//     --> c = 1 - r((0.5 - e) slope) while lit, r((e - 0.5) slope) while dark      (PhotocellLaw.h)
//     --> c (1 - lamp floor), limited to 0..1 --> gain = 1 - c * depth * mute
//
//   rate      = slowest + (fastest - slowest) x Hz
//   threshold = 0.86 - 0.06 t10(x)           slope = -12.6 - 5.4 t10r(x)
//   floor     = floorSlow + (floorFast - floorSlow) x
//   e rises by 1 in 23.8 ms and falls by 1 in 73.2 - 20 x ms
//   depth     = t50(intensity)               mute: 0 when muted, else 1
//
// The two branches need not meet at a switch of the lamp. All controls glide with a time constant of 20 ms.
//
// Threads: setters from control threads, one at a time; process and gains on the audio thread.
#pragma once

#include <vector>

#include "math/BlockRamp.h"
#include "math/LfoSine.h"
#include "math/StandardTaper.h"

// What the speed knob runs over, from 0 to 1.
struct OpticalTremoloRanges {
    float slowestHz;
    float fastestHz;
    float lampFloorSlow;
    float lampFloorFast;

    // The knob at which the cell runs at this rate; beyond 0 to 1 outside of the range.
    float knobOf(float hz) const { return (hz - slowestHz) / (fastestHz - slowestHz); }
};

class OpticalTremoloCell {
public:
    // As the effect of its own.
    static constexpr OpticalTremoloRanges kUnitRanges{2.0f, 10.0f, 0.14125f, 0.19054f};
    // As the effect whose speed is shown in Hz.
    static constexpr OpticalTremoloRanges kHertzRanges{1.75f, 8.5f, 0.14125f, 0.19054f};
    // As the vibrato of the two-channel reverb amp.
    static constexpr OpticalTremoloRanges kArvelReverb65Ranges{3.22f, 9.9f, 0.14125374f, 0.19054608f};

    // blockLength: the samples of every call, at sampleRateHz. Both knobs stand at 0.3.
    OpticalTremoloCell(int blockLength, float sampleRateHz, const OpticalTremoloRanges& ranges = kUnitRanges);

    // One block in place.
    void process(float* x);

    // One block, both outputs the mean of the inputs times the gain. Outputs may be the inputs.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // One block, each output its own input times the one gain. Outputs may be the inputs.
    void processStereo(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // The gains of the next block, for callers that have channels of their own.
    void gains(float* out);

    // Knobs 0 to 1, limited to that; with init the value is there at once.
    void setSpeed(float knob, bool init);
    void setIntensity(float knob, bool init);
    // Muted, the gain goes to 1.
    void setMute(bool on, bool init);

    // Dark lamp, sine at its start, controls at their targets. Not while a block is processed.
    void reset();

private:
    void applySpeed(float knob, bool init);
    void applyIntensity(float knob, bool init);
    void runLamp();

    const int blockLength_;
    const float sampleRate_;
    const OpticalTremoloRanges ranges_;
    const float risePerSample_;
    BlockRamp rate_;
    BlockRamp depth_;
    BlockRamp threshold_;
    BlockRamp slope_;
    BlockRamp lampFloor_;
    BlockRamp fallingTime_;  // seconds
    BlockRamp mute_;
    LfoSine sine_;
    float envelope_ = 0.0f;
    StandardTaper depthTaper_{"t50"};
    StandardTaper thresholdTaper_{"t10"};
    StandardTaper slopeTaper_{"t10r"};
    // Work arrays of a block.
    std::vector<float> sines_;
    std::vector<float> side_;
    std::vector<float> envelopes_;
    std::vector<float> shunt_;
    std::vector<float> gains_;
};
