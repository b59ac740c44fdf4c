// The measured tank's response as a plain convolution, without the valves around it.
//
//   mean of left and right -> response x 0.2 -> wet, + dry of each side at -0.1 dB
//
// The factor brings the response, which is stored for the amps' gains, to about the dry level at 1 kHz.
// Without the response's file the unit passes its dry signal.
//
// Parameter: wetLvl (0.5), 0 to 1: 20 log10 of it, -60 to 0 dB.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "algorithms/reverb/SpringRamp.h"
#include "core/units/control/ControlledUnit.h"
#include "math/TwoStageFFTConvolver.h"

class DUBS_SpringConv final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_SpringConv(std::string tarvekId, int blockLength, float sampleRate);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;

private:
    std::optional<TwoStageFFTConvolver> convolver_;
    rvb::SpringRamp left_;
    rvb::SpringRamp right_;
    std::vector<float> mono_;
    std::vector<float> wet_;
};
