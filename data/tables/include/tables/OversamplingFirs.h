// The low-pass pairs of the oversampler, one pair for each rate and length. tools/data/oversampling_firs.py.
//
// Both filters run at rate times the outer sample rate and have rate * length taps; each sums to 1 and is
// linear-phase. The up filter follows a zero-order hold and makes up for its droop.
#pragma once

namespace tables {

struct OversamplingFirPair {
    int rate;
    int length;  // taps per phase
    const float* up;
    const float* down;
};

inline constexpr int kOversamplingFirPairs = 9;

// (2,8) (2,12) (3,6) (3,10) (4,6) (4,10) (4,12) (5,6) (5,10), in this order.
extern const OversamplingFirPair kOversamplingFirs[kOversamplingFirPairs];

}  // namespace tables
