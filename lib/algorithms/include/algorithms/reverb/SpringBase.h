// An algorithmic spring tank: early taps, a dispersive loop and a bank of combs behind one input filter.
//
//   (left + right) x dwell -> peak -+-> six early taps with feedback -----------------------------> early
//                                   +-> x comb gain -> 8 combs -> 4 allpasses -> shelf ----------> reverb
//                                   +-> 4 filters -+
//        loop (a block ago) x 0.873 -> 30 allpasses +-> 43.4 ms delay -------------------------> loop
//
//   reverb = early weights(reverb, early) = late weights(reverb, loop) -> shelf -> low-pass
//   out left = wet reverb + dry left,   out right = wet reverb + dry right
//
// The tank is mono inside: its two outputs differ by their dry paths alone. Each turn of the loop goes
// through the dispersion once more, so its echoes become longer and longer chirps. The loop's feedback is one
// block late, so the block's length is part of the sound.
//
// The filter and dispersion rows are literal coefficients at any sample rate; only delays and designed
// filters follow the rate. Dispersion and filters run as pipelines whose outputs come late by a fixed number
// of samples; the loop's delay is shorter by as much.
//
// Threads: process and reset on the audio thread; the setters on the control side, one thread at a time. They
// write single words and the ramps' targets.
#pragma once

#include <atomic>
#include <vector>

#include "algorithms/reverb/DampedCombs.h"
#include "algorithms/reverb/SchroederAllpass.h"
#include "algorithms/reverb/SpringRamp.h"
#include "algorithms/reverb/SpringShelf.h"
#include "algorithms/reverb/SpringVoicing.h"
#include "math/BiquadCascade.h"
#include "math/BqPeak.h"
#include "math/ConstFractDelay.h"
#include "math/OnePoleLowPass.h"

namespace rvb {

class SpringBase {
public:
    // voicing: outlives the tank. blockLength: samples of every call, at sampleRate (Hz).
    SpringBase(const SpringVoicing& voicing, int blockLength, float sampleRate);

    // count: the block's length. Outputs may be the inputs.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight, int count);

    // The two halves of process, for units that do something to the reverb before it meets the dry signal:
    // the block's reverb, valid until the next one, then the mix of a reverb for each side with the dry
    // signal.
    const float* reverberate(const float* inLeft, const float* inRight, int count);
    void mix(const float* reverbLeft, const float* reverbRight, float* outLeft, float* outRight, int count);

    // Back to silence: delays, filters, combs and allpasses. The ramps stay where they are.
    void reset();

    // dB, limited to the voicing's range; isInit jumps.
    void setDryLevelDb(float db, bool isInit);
    void setWetLevelDb(float db, bool isInit);
    // Corner of the combs' low-passes in Hz, limited to the voicing's range.
    void setDecayHz(float cutoffHz);
    // v: 0 to 1 between the ends of the voicing's dwell range. The input gain becomes 0.707 of what lies
    // there. Outside 0 to 1 is an error in the log, and the range's lower end takes the place of v.
    void setDwell(float v);
    // The same between the ends of the diffuse range, for the feedback of all combs.
    void setDiffuse(float v);
    // Corner of the output's low-pass in Hz, limited to the voicing's range.
    void setToneHz(float cutoffHz);
    // Period of the ramps' corner, seconds.
    void setRampSeconds(float seconds);

    float inputGain() const { return inputGain_.load(std::memory_order_relaxed); }
    // comb: 0 to 7.
    float combFeedback(int comb) const { return combs_.feedback(comb); }
    float combDampingHz(int comb) const;
    float toneHz() const;
    float wetTarget() const { return outputLeft_.secondTarget(); }
    float dryTarget() const { return outputLeft_.firstTarget(); }
    const SpringVoicing& voicing() const { return voicing_; }

protected:
    // inputScale: times the input gain. wetTrims, dryTrims: left, right; times the gains of the output mix.
    SpringBase(const SpringVoicing& voicing, float inputScale, const float (&wetTrims)[2],
               const float (&dryTrims)[2], int blockLength, float sampleRate);

private:
    static constexpr int kEarlyTaps = 6;

    float poleOf(float cutoffHz) const;
    float gainOf(float db) const;
    void setInputGain(float gain);

    const SpringVoicing& voicing_;
    const float sampleRate_;
    const float inputScale_;
    const float wetTrims_[2];
    const float dryTrims_[2];

    std::atomic<float> inputGain_{0.0f};

    BqPeak inputPeak_;
    ConstFractDelay earlyTaps_;
    BiquadCascade fixedFilters_;
    BiquadCascade dispersion_;
    ConstFractDelay alignment_;  // holds the filters' output back by the dispersion's greater lateness
    ConstFractDelay loopDelay_;
    DampedCombs combs_;
    std::vector<SchroederAllpass> allpasses_;
    SpringShelf firstShelf_;
    SpringShelf secondShelf_;
    OnePoleLowPass tone_;
    SpringRamp early_;
    SpringRamp late_;
    SpringRamp outputLeft_;
    SpringRamp outputRight_;

    // One block each.
    std::vector<float> filtered_;   // A
    std::vector<float> loopIn_;     // B
    std::vector<float> loopOut_;    // C, kept from block to block
    std::vector<float> dispersed_;  // D
    std::vector<float> reverb_;     // E
    std::vector<float> combIn_;     // F
    std::vector<float> dryLeft_;    // G
    std::vector<float> dryRight_;   // H
    std::vector<float> reflected_;  // I
};

}  // namespace rvb
