// A cabinet as a network of filters: the box's low end, three peaks of the cone, its roll-off of 24 dB an
// octave.
//
//   in -> high-pass -> peak 1 (low resonance) -> peak 2 (dip) -> peak 3 (presence) -> low-pass -> low-pass
//      -> trim -> out
#pragma once

#include <array>

#include "BiquadChain.h"
#include "algorithms/cabsim/ICabSim.h"

struct FilterCabinetValues {
    struct Corner {
        float hz;
        float q;
    };
    struct Peak {
        float gainDb;
        float hz;
        float q;
    };
    Corner highPass;
    std::array<Peak, 3> peaks;
    std::array<Corner, 2> lowPass;
    float trimDb;
};

class FilterCabinet final : public ICabSim {
public:
    // blockLength: samples per call, at sampleRate (Hz).
    FilterCabinet(const FilterCabinetValues& values, int blockLength, float sampleRate);

    void process(const float* in, float* out) override;
    void reset() override { chain_.clear(); }

private:
    const int blockLength_;
    BiquadChain chain_;
};
