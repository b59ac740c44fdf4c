// A crossfade of two stereo pairs.
//
//   out = (1 - g) * second + g * first,   first: inputs 0 and 1, second: inputs 2 and 3
//
// g follows the parameter mix (0 to 1, 0.5 at first) with a time constant of 10 ms.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "core/DspUnit/DspUnit.h"
#include "core/Parameter/Parameter.h"
#include "math/OnePoleRamp.h"

class DU_StereoMixer final : public DspUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DU_StereoMixer(std::string tarvekId, int blockLength, float sampleRate);

    void reset() override {}
    void process() override;
    void init(DspArchive& archive) override;
    void getArchive(DspArchive& archive) override;

    // True if a block has clipped since the last call. Control threads.
    bool readAndClearClipFlag();

private:
    void setMix(float mix);
    void initMix(float mix);
    float getMix() const { return ramp_.target(); }

    OnePoleRamp ramp_;
    Parameter<float> mix_;
    std::atomic<bool> clipFlag_{false};
    std::vector<float> gains_;
};
