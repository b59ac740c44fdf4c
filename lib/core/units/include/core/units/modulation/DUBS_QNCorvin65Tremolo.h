// The optical cell as a unit; both outputs are the mean of the inputs times the gain.
//
// Parameters: speed and intensity, knobs 0 to 1, 0.3.
#pragma once

#include <string>

#include "algorithms/modulation/OpticalTremoloCell.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_QNCorvin65Tremolo final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_QNCorvin65Tremolo(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { cell_.reset(); }

private:
    OpticalTremoloCell cell_;
};
