// TremoloHarmonic as a unit without tempo.
//
// Parameters: speed (Hz, 4.05), intensity (0 to 1, 0.78), shape (0 to 1, 0.44), mode ("6G4" or "6G4A",
// "6G4A").
#pragma once

#include <string>

#include "algorithms/modulation/TremoloHarmonic.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_TremoloHarmonicStereo final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_TremoloHarmonicStereo(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { tremolo_.reset(); }

private:
    TremoloHarmonic tremolo_;
};
