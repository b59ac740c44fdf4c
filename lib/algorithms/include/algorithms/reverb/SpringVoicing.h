// The constants of an algorithmic spring tank: one read-only record for each voicing.
#pragma once

#include "math/BiquadDesign.h"

namespace rvb {

struct SpringVoicing {
    // Two gains of a mix; the second weighs the reverb so far.
    struct WeightPair {
        float first;
        float second;
    };
    // Comb i: delay, corner of the low-pass in its loop, loop gain.
    struct Comb {
        float delayMs;
        float dampingHz;
        float feedback;
    };
    struct Allpass {
        float delayMs;
        float forwardGain;
        float backGain;
    };
    struct Peak {
        float gainDb;
        float frequencyHz;
        float q;
    };
    struct Shelf {
        float lowDb;
        float highDb;
        float frequencyHz;
    };

    float levelMinDb{}, levelMaxDb{};
    WeightPair earlyWeights{};   // first weighs the early taps
    WeightPair lateWeights{};    // first weighs the dispersive loop
    WeightPair outputWeights{};  // first weighs the dry signal; where the output ramps start
    float rampSeconds{};
    float combInputGain{};
    float dwellMin{}, dwellMax{};  // the lower one is the input gain at the start
    float diffuseMin{}, diffuseMax{};
    BiquadCoefficients<float> fixedFilters[4];
    float loopFeedback{};
    // Second-order allpasses. Their delays grow towards low frequencies.
    BiquadCoefficients<float> dispersion[30];
    float earlyTapMs[6];
    float earlyMaxMs{};
    float earlyTapGains[6];
    float earlyFeedback{};
    float loopTapMs{}, loopMaxMs{}, loopTapGain{};
    float loopDelayFeedback{};  // 0; another value would act as late as the dispersion's pipeline is long
    Comb combs[8];
    float decayMinHz{}, decayMaxHz{};
    Allpass allpasses[4];
    float toneMinHz{}, toneMaxHz{};  // the lower one is the output's corner at the start
    Peak inputPeak{};
    Shelf firstShelf{};
    Shelf secondShelf{};
};

// The same record with what the Ostrel tank adds; every value here is neutral.
struct SpringVoicingOstrel {
    SpringVoicing common;
    float inputScale{};  // times the input gain
    float wetTrims[2];   // left, right; times the wet gain
    float dryTrims[2];   // left, right; times the dry gain
};

extern const SpringVoicing kSpringVoicing65;
extern const SpringVoicing kSpringVoicing63;
extern const SpringVoicingOstrel kSpringVoicing63Ostrel;

}  // namespace rvb
