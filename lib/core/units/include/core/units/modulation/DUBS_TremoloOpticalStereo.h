// The optical cell as a unit with its rate in Hz; each output is its own input times the one gain.
//
// Parameters: rate (Hz, 1.75 to 8.5, 6.56), level (the cell's intensity, 0 to 1, 0.86).
#pragma once

#include <string>

#include "algorithms/modulation/OpticalTremoloCell.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_TremoloOpticalStereo final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_TremoloOpticalStereo(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { cell_.reset(); }

private:
    OpticalTremoloCell cell_;
};
