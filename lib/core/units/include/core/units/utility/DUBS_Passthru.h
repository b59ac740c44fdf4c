// A stereo effect that changes nothing: what is left of it is the bypass, the mutes and the clip latch.
#pragma once

#include <string>

#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"

class DUBS_Passthru final : public DspUnitBypassStereo {
public:
    // blockLength in samples, sampleRate in Hz.
    DUBS_Passthru(std::string tarvekId, int blockLength, float sampleRate);

    using DspUnitBypassStereo::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;
    void initDerived(DspArchive&) override {}
    void getArchiveDerived(DspArchive&) override {}
};
