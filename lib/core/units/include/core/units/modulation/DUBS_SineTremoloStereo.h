// TremoloSine as a unit without tempo; one gain for both channels.
//
// Parameters: rate (Hz, 6.56), level (0 to 1, 0.86), duty (0 to 1, 0.5), dist (the core's clip, 0 to 1, 0),
// shape (the core's dist, 0 to 1, 0).
#pragma once

#include <string>

#include "algorithms/modulation/TremoloSine.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_SineTremoloStereo final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_SineTremoloStereo(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { tremolo_.reset(); }

private:
    TremoloSine tremolo_;
};
