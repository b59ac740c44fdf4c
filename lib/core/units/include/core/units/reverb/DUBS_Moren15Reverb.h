// The '65 spring tank at its own settings, with nothing but its two levels.
//
// Parameters: drylvl (0) and wetlvl (1), 0 to 1: 20 log10 of it, -60 to 0 dB.
#pragma once

#include <string>

#include "algorithms/reverb/SpringBase.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_Moren15Reverb final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_Moren15Reverb(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override { tank_.reset(); }

    const rvb::SpringBase& tank() const { return tank_; }

private:
    rvb::SpringBase tank_;
};
