// The optical cell as a unit; both outputs are the mean of the inputs times the gain.
//
// Parameters: rate (the cell's speed, 0) and level (its intensity, 0.5), knobs 0 to 1.
#pragma once

#include <string>

#include "algorithms/modulation/OpticalTremoloCell.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_CorvinTremolo final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_CorvinTremolo(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { cell_.reset(); }

private:
    OpticalTremoloCell cell_;
};
