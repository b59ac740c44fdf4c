// TremoloSine as a unit; one gain for both channels.
//
// Parameters: level (0 to 1, 0.86), rate (Hz, 6.56), noteDivision, duty (0 to 1, 0.5), dist (the core's clip,
// 0 to 1, 0), shape (the core's dist, 0 to 1, 0).
#pragma once

#include <string>

#include "algorithms/modulation/TremoloSine.h"
#include "core/units/control/TempoUnit.h"

class DUBS_SineTremolo final : public TempoUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_SineTremolo(std::string tarvekId, int blockLength, float sampleRate);

    using TempoUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { tremolo_.reset(); }

private:
    TremoloSine tremolo_;
};
