// A cabinet for the graph: an impulse response with filters and a level, as it stands in the amps' line feed.
//
//   left, right -> (left + right) / 2 -> response -> low-pass -> high-pass -> level -> both outputs
//
// Without a response both channels pass as they are.
//
// Parameters: idCabinet (name of a user response, path, or "none"), idCabinetHPF (20 to 500 Hz), idCabinetLPF
// (1000 to 20000 Hz), idCabinetLevel (-36 to 0 dB). A value outside its range is limited.
#pragma once

#include <string>

#include "algorithms/cabsim/UserIRQNS.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_IRLoader final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_IRLoader(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;

private:
    UserIRQNS cabinet_;
};
