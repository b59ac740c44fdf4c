// The algorithmic spring tank in the '63 voicing.
//
// Parameters: level, decay, dwell, diffuse and tone, knobs 0 to 1; see SpringUnit.
#pragma once

#include <string>

#include "algorithms/reverb/SpringBase.h"
#include "core/units/reverb/SpringUnit.h"

class DUBS_TarvekSpring63 final : public SpringUnit<rvb::SpringBase> {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_TarvekSpring63(std::string tarvekId, int blockLength, float sampleRate);
};
