// The algorithmic spring tank in the '65 voicing.
//
// Parameters: wetLvl, decay, dwell, diffuse and tone, knobs 0 to 1; see SpringUnit.
#pragma once

#include <string>

#include "algorithms/reverb/SpringBase.h"
#include "core/units/reverb/SpringUnit.h"

class DUBS_Spring65 final : public SpringUnit<rvb::SpringBase> {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_Spring65(std::string tarvekId, int blockLength, float sampleRate);
};
