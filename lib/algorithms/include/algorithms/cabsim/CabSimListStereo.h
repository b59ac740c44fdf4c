// CabSimList on two channels, each with its own filters and both with one choice.
#pragma once

#include <string>

#include "algorithms/cabsim/CabSimList.h"

class CabSimListStereo {
public:
    // As CabSimList.
    CabSimListStereo(int blockLength, float sampleRate)
        : left_(blockLength, sampleRate), right_(blockLength, sampleRate) {}

    // False for a name that is not in the list; the cabinet stays then.
    bool setCabSim(const std::string& name) { return left_.setCabSim(name) && right_.setCabSim(name); }

    // count: the block length. In place allowed.
    void process(const float* inL, const float* inR, float* outL, float* outR, int count) {
        left_.process(inL, outL, count);
        right_.process(inR, outR, count);
    }

private:
    CabSimList left_;
    CabSimList right_;
};
