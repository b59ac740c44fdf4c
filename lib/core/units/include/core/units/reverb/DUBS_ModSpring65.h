// The '65 spring tank with two modulated voices: the reverb reaches each side through a delay of its own that
// swings between 20 and 26 ms, the right one a quarter of a cycle ahead.
//
//   in -> tank -+-> voice left  -> wet left,  + dry left  -> x gain -> out left
//               +-> voice right -> wet right, + dry right -> x gain -> out right
//
// Parameters: wetLvl, decay, dwell, diffuse and tone, knobs 0 to 1, see SpringUnit; rateHz (0.1 to 8 Hz, 0.1)
// and depth (0 to 1, 0.25) of the voices.
#pragma once

#include <string>
#include <vector>

#include "algorithms/modulation/TwoVoiceModulation.h"
#include "core/units/reverb/SpringUnit.h"

class DUBS_ModSpring65 final : public SpringUnit<rvb::SpringBase> {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_ModSpring65(std::string tarvekId, int blockLength, float sampleRate);

    using SpringUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void reset() override;

private:
    TwoVoiceModulation voices_;
    const float gain_ = 1.0f;  // of both outputs
    std::vector<float> left_;
    std::vector<float> right_;
};
