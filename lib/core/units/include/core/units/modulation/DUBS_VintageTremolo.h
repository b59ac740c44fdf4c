// TremoloVintage as a unit; one gain for both channels.
//
// Parameters: level (0 to 1, 0.86), rate (Hz, 7.21), noteDivision, duty (0 to 1, 0.5), attack (0.96) and
// release (0.94), 0 to 1.
#pragma once

#include <string>

#include "algorithms/modulation/TremoloVintage.h"
#include "core/units/control/TempoUnit.h"

class DUBS_VintageTremolo final : public TempoUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_VintageTremolo(std::string tarvekId, int blockLength, float sampleRate);

    using TempoUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { tremolo_.reset(); }

private:
    TremoloVintage tremolo_;
};
